// A thread that ends the process when the handling of its crash hangs.
#pragma once

#include <cstdint>

#include "common/win32.h"

namespace crash {

// Creates the watching thread; call it on the main thread. Its existence must not keep a process alive whose main
// thread has ended (ExitThread; under Wine also a stack overflow without room for the report): it then ends the process
// with the exit code of that thread, or 1 for 0. Where it cannot be created, nothing ends a process that hangs.
void prepare_watchdog() noexcept;

// Starts the minute after which the process is ended with this exit status.
void start_watchdog(std::uint32_t exit_status) noexcept;

// The id of the watching thread, 0 without one. Whoever writes a dump of this process must not suspend it.
std::uint32_t watching_thread() noexcept;

// For the thread that handles the crash, while it waits for another process to write the dump. That time does not
// count: the minute is extended by longest_wait (milliseconds), and starts anew when that process has ended. A process
// that is killed while it writes the dump leaves the threads of this one suspended; the watching thread resumes them.
class watchdog_pause_t {
public:
    watchdog_pause_t(HANDLE process, std::uint32_t longest_wait) noexcept;
    ~watchdog_pause_t();
    watchdog_pause_t(const watchdog_pause_t&) = delete;
    watchdog_pause_t& operator=(const watchdog_pause_t&) = delete;
};

}  // namespace crash
