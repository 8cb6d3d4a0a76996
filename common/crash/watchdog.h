// A thread that ends the process if the handling of a crash hangs.
#pragma once

#include <cstdint>

#include "common/win32.h"

namespace crash {

// Starts a thread on which the handling of a crash relies, and waits until it runs, at most a second: a thread that is
// still starting needs the loader's lock, which the thread that crashes may have. The function gets an event, which it
// sets at once. Returns the thread, which the caller may close, or null.
HANDLE start_lasting_thread(LPTHREAD_START_ROUTINE function, SIZE_T stack_size) noexcept;

// Creates the watching thread; call it on the main thread. If it cannot be created, nothing ends a process that hangs.
//
// Only for Wine, it also ends the process after the main thread, with that thread's exit code, or 1 if that is 0: Wine
// silently ends a thread whose stack overflow leaves no room for the report, where Windows ends the process.
void prepare_watchdog() noexcept;

// Gives the handling of the crash one minute; after that, the process is ended with this exit status. Needs no lock and
// hardly any stack. Only the first call counts.
void start_watchdog(std::uint32_t exit_status) noexcept;

// Returns the id of the watching thread, or 0 if there is none. A program that writes a dump of this process must not
// suspend that thread.
std::uint32_t watching_thread() noexcept;

// For the thread that handles the crash, while it waits for another process to write the dump. Waiting does not use up
// the minute: it is extended by timeout (milliseconds), and starts anew when the wait is over. If that process is
// killed while it writes the dump, it leaves the threads of this one suspended; the watching thread resumes them.
class watchdog_pause_t {
public:
    watchdog_pause_t(HANDLE process, std::uint32_t timeout) noexcept;
    ~watchdog_pause_t();
    watchdog_pause_t(const watchdog_pause_t&) = delete;
    watchdog_pause_t& operator=(const watchdog_pause_t&) = delete;
};

}  // namespace crash
