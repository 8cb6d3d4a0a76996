#pragma once

#include <string_view>

#include "common/win32.h"

namespace platform {

// Whether the handle belongs to a console, not to a file, a pipe or nothing.
bool is_console(HANDLE handle) noexcept;

// Writes the whole text in as many pieces as the console takes. Returns false with the last error set when it does not
// take all of it, which includes a handle that is no console.
bool write_console(HANDLE console, std::wstring_view text) noexcept;

}  // namespace platform
