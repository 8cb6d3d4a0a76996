#include "common/platform/console.h"

#include <algorithm>

#include "common/encoding/convert.h"

namespace platform {

bool is_console(HANDLE handle) noexcept {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != FALSE;
}

bool write_console(HANDLE console, std::wstring_view text) noexcept {
    constexpr std::size_t portion = 8192;  // a console takes only so much at a time
    while (!text.empty()) {
        const auto size = static_cast<DWORD>(std::min(portion, text.size()));
        DWORD written = 0;
        if (!WriteConsoleW(console, text.data(), size, &written, nullptr) || written == 0) return false;
        text.remove_prefix(written);
    }
    return true;
}

void print(HANDLE target, const std::string& text) {
    DWORD written = 0;
    if (is_console(target)) {
        write_console(target, encoding::utf8_to_wide(text));
        return;
    }
    for (std::string_view rest = text; !rest.empty(); rest.remove_prefix(written)) {
        if (!WriteFile(target, rest.data(), static_cast<DWORD>(rest.size()), &written, nullptr) || written == 0) return;
    }
}

}  // namespace platform
