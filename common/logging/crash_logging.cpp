#include "common/logging/crash_logging.h"

#include "common/logging/process_logger.h"

namespace logging {

void begin_crash_logging(std::uint32_t crashed_thread, std::chrono::milliseconds wait) noexcept {
    process_logger().begin_bounded_waits(wait, crashed_thread);
}

bool try_log_for(const record_t& record, std::chrono::milliseconds wait, std::uint32_t stopped_thread) noexcept {
    return process_logger().try_log_for(record, wait, stopped_thread);
}

}  // namespace logging
