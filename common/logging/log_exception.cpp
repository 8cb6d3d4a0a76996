#include "common/logging/log_exception.h"

#include <string>

#include "common/exc/exceptions.h"
#include "common/exc/format_message.h"

namespace logging {
namespace {

struct message_t {
    unsigned level;
    std::string_view text;
};

message_t message_of(const std::exception& exception) {
    if (const char* text = exception.what()) return {level_warning, text};
    return {level_error, "Exception message is not available."};
}

std::string thread_of(const std::exception& exception) {
    const auto* known = dynamic_cast<const exc::exc_base_t*>(&exception);
    return known != nullptr && known->thrower_thread_id() != 0 ? std::to_string(known->thrower_thread_id()) : "n/a";
}

}  // namespace

void log_exception(const component_t& component, const std::exception& exception) noexcept {
    const message_t message = message_of(exception);
    component.log(message.level, message.text);
}

void log_exception(const component_t& component, std::string_view prefix, const std::exception& exception) noexcept
    try {
    component.log(level_warning, std::string(prefix).append("\n").append(message_of(exception).text));
} catch (const std::bad_alloc&) {
    component.log(level_warning, prefix);
}

void log_exception_with_thread(const component_t& component, const std::exception& exception) noexcept try {
    const message_t message = message_of(exception);
    component.log(message.level, exc::format_message("%1\nAn exception was thrown from thread [%2].",
                                                     {message.text, thread_of(exception)}));
} catch (const std::bad_alloc&) {
    log_exception(component, exception);
}

}  // namespace logging
