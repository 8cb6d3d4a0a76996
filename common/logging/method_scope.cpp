#include "common/logging/method_scope.h"

#include <utility>

namespace logging {
namespace {

void log_outcome(const component_t& component, unsigned level, const std::string& text, const char* outcome) noexcept
    try {
    component.log(level, text + outcome);
} catch (const std::bad_alloc&) {
    component.log(level, text);
}

}  // namespace

method_scope_t::method_scope_t(const component_t& component, std::string text, std::string failure_line)
    : component_(component), text_(std::move(text)), failure_line_(std::move(failure_line)) {
    component_.info(text_);
}

method_scope_t::~method_scope_t() {
    if (succeeded_) return;
    if (failure_line_.empty()) {
        log_outcome(component_, level_error, text_, " Failed.");
    } else {
        component_.log(level_error, failure_line_);
    }
}

void method_scope_t::succeed() noexcept {
    if (std::exchange(succeeded_, true)) return;
    log_outcome(component_, level_info, text_, " ok.");
}

}  // namespace logging
