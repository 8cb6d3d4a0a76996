#pragma once

#include "common/logging/logger_core.h"

namespace logging {

// The one logger of the process, behind every component. It has the debugger output from the start, and is never
// destroyed: objects with static storage log while the process ends.
logger_t& process_logger() noexcept;

}  // namespace logging
