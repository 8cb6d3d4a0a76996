#pragma once

#include <string>

#include "common/logging/component.h"

namespace logging {

// A step that the log shows from its start to its end. Logs its text when it is created, the text and " ok." when
// succeed() is called, and if it is destroyed without that, the failure line or, if there is none, the text and
// " Failed.". Starts and successes are logged at level 1, failures at level 4.
class method_scope_t {
public:
    method_scope_t(const component_t& component, const std::string& text, std::string failure_line = {});
    ~method_scope_t();
    method_scope_t(const method_scope_t&) = delete;
    method_scope_t& operator=(const method_scope_t&) = delete;

    void succeed() noexcept;

private:
    const component_t& component_;
    std::string success_line_;
    std::string failure_line_;
    bool succeeded_ = false;
};

}  // namespace logging
