#include "common/platform/console.h"

#include <algorithm>

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

}  // namespace platform
