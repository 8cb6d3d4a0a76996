// Logging in a process that is about to die.
#pragma once

#include <chrono>
#include <cstdint>

namespace logging {

// Called by the thread that handles a crash, before it logs. Waits for the log's lock at most this long and keeps it
// for good: other threads that log block. Records of the handling thread then carry crashed_thread (a Win32 thread id).
// They skip a sink that the crash happened in; the other sinks get them. When the lock is not available in time, the
// log is silent from then on: every record of every thread is dropped, and nothing waits for the log. There is no way
// back: the process must end without running destructors of static objects (TerminateProcess).
void begin_crash_logging(std::uint32_t crashed_thread, std::chrono::milliseconds wait) noexcept;

}  // namespace logging
