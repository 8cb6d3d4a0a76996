#include "common/logging/method_scope.h"

#include <utility>

namespace logging {

method_scope_t::method_scope_t(const component_t& component, const std::string& text, std::string failure_line)
    : component_(component),
      success_line_(text + " ok."),
      failure_line_(failure_line.empty() ? text + " Failed." : std::move(failure_line)) {
    component_.info(text);
}

method_scope_t::~method_scope_t() {
    if (!succeeded_) component_.log(level_error, failure_line_);
}

void method_scope_t::succeed() noexcept {
    if (!std::exchange(succeeded_, true)) component_.info(success_line_);
}

}  // namespace logging
