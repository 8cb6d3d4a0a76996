// Ends a process that hangs while its crash is handled.
#pragma once

#include <cstdint>

#include "common/win32.h"

namespace crash {

// Creates the watching thread. It ends the process with the exit code of the calling thread (1 instead of 0) should
// that one end without the process: a thread without any stack left can be stopped by the system with no word to
// anybody. To be called by the main thread. Without the watching thread what hangs is not ended.
void prepare_watchdog() noexcept;

// From here on the process has a minute to end by itself, then it is ended with the exit status.
void start_watchdog(std::uint32_t exit_status) noexcept;

// The watching thread's id; 0 without one. Whoever writes a dump of this process must let it run.
std::uint32_t watching_thread() noexcept;

// For the one thread that handles the crash, while it waits for another process that writes the dump. So long there
// are that many milliseconds more than the minute; when that process has ended, a whole minute again. Threads of this
// process that it left suspended, being killed, are resumed.
class watchdog_pause_t {
public:
    watchdog_pause_t(HANDLE process, std::uint32_t longest_wait) noexcept;
    ~watchdog_pause_t();
    watchdog_pause_t(const watchdog_pause_t&) = delete;
    watchdog_pause_t& operator=(const watchdog_pause_t&) = delete;
};

}  // namespace crash
