#pragma once

#include <string>
#include <string_view>

#include "common/win32.h"

namespace platform {

// Returns whether the handle belongs to a console, rather than to a file, a pipe or nothing.
bool is_console(HANDLE handle) noexcept;

// Writes the whole text in as many pieces as the console takes. Returns false, with the last error set, if the console
// does not take all of it or the handle is not a console.
bool write_console(HANDLE console, std::wstring_view text) noexcept;

// Writes UTF-8 to a console, or a file or pipe, as far as it takes it. Throws only what conversions throw.
void print(HANDLE target, const std::string& text);

}  // namespace platform
