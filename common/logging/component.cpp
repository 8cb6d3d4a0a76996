#include "common/logging/component.h"

#include "common/logging/logger.h"

namespace logging {

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): one logs on a component
void component_t::log(const record_t& record) const noexcept { process_logger().log(record); }

}  // namespace logging
