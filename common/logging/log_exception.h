// How caught exceptions are logged.
#pragma once

#include <exception>
#include <string_view>

#include "common/logging/component.h"

namespace logging {

// what() at the warning level; a sentence of its own at the error level if there is none.
void log_exception(const component_t& component, const std::exception& exception) noexcept;

// The prefix, "\n" and what() at the warning level.
void log_exception(const component_t& component, std::string_view prefix, const std::exception& exception) noexcept;

// For a failure that may come from another thread: what() followed by
// "\nAn exception was thrown from thread [%1].", where the thread is "n/a" when it is not known. Fixed from outside.
void log_exception_with_thread(const component_t& component, const std::exception& exception) noexcept;

}  // namespace logging
