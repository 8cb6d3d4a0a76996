#include "common/crash/handler_registry.h"

#include <array>
#include <atomic>
#include <cstddef>

#include "common/exc/raise.h"
#include "common/logging/log_exception.h"

namespace crash {
namespace {

// Without a lock, which the crashed thread might hold.
constinit std::array<std::atomic<handler_t>, 16> handlers{};
constinit std::atomic<std::size_t> reserved{0};

bool run(handler_t handler, const logging::component_t& component) noexcept try {
    handler();
    return true;
} catch (const std::exception& failure) {
    logging::log_exception(component, failure);
    return false;
}

}  // namespace

bool register_handler(handler_t handler) noexcept {
    const std::size_t place = reserved++;
    if (place >= handlers.size()) return false;
    handlers[place] = handler;
    return true;
}

bool run_handlers(const logging::component_t& component) noexcept {
    bool succeeded = true;
    for (const std::atomic<handler_t>& slot : handlers) {
        const handler_t handler = slot;
        if (handler != nullptr && !run(handler, component)) succeeded = false;
    }
    return succeeded;
}

}  // namespace crash
