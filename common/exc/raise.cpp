#include "common/exc/raise.h"

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/win32.h"

namespace exc {

std::uint32_t current_thread_id() noexcept { return GetCurrentThreadId(); }

void add_win_error(exc_base_t& failure, std::uint32_t code, std::string_view message) {
    failure.add_text(get_error_text(code));
    failure.add_text(std::string(message));
    failure.add_error_code(code);
}

void raise_win_error(std::uint32_t code, std::string_view message) {
    win_sys_exc_t failure(code);
    add_win_error(failure, code, message);
    throw failure;
}

void raise_path_error(std::uint32_t code, std::string_view sentence, const std::wstring& path) {
    raise_win_error(code, format_message(sentence, encoding::wide_to_utf8(path)));
}

void rethrow_with_context(const std::exception& cause, std::string_view context) {
    if (const auto* known = dynamic_cast<const exc_base_t*>(&cause)) {
        const auto copy = known->clone();
        copy->add_text(std::string(context));
        copy->rethrow();
    }
    rethrow_as_runtime_error(cause, context);
}

void rethrow_as_runtime_error(const std::exception& cause, std::string_view context) {
    runtime_exc_t failure;
    if (const auto* known = dynamic_cast<const exc_base_t*>(&cause)) {
        for (const message_part_t& part : known->parts()) {
            part.trace ? failure.add_trace_text(part.text) : failure.add_text(part.text);
        }
    } else if (const char* text = cause.what()) {
        failure.add_text(text);
    }
    failure.add_text(std::string(context));
    throw failure;
}

}  // namespace exc
