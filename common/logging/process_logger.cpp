#include "common/logging/process_logger.h"

#include <boost/make_shared.hpp>

#include "common/logging/debug_output_log.h"

namespace logging {
namespace {

logger_t* create() {
    auto* created = new logger_t;
    created->attach(boost::make_shared<receiver::COutputDebugStringLog>());
    return created;
}

}  // namespace

logger_t& process_logger() noexcept {
    static logger_t* const logger = create();
    return *logger;
}

}  // namespace logging
