// Logging in a process that is about to die: the thread that failed may hold the log's lock for ever.
#pragma once

#include <chrono>
#include <cstdint>

#include "common/logging/component.h"

namespace logging {

// From here on no record of any thread waits longer than this for the log; one that cannot be written in that time is
// dropped. Nothing waits for crashed_thread (a Win32 thread id), which does not run on, or for a thread that has
// ended. When the crashed thread holds the log, records go past it to all sinks but the one that it stopped in. There
// is no way back: the process ends without its static objects' destructors (TerminateProcess).
void begin_crash_logging(std::uint32_t crashed_thread, std::chrono::milliseconds wait) noexcept;

// Logs one record in this way and tells whether it was written; a record below the level filter counts as written.
// stopped_thread is 0 when no thread is known to have stopped.
bool try_log_for(const record_t& record, std::chrono::milliseconds wait, std::uint32_t stopped_thread = 0) noexcept;

}  // namespace logging
