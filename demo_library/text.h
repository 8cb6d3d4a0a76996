// Conversions between UTF-16, which crosses the binary interface, and UTF-8, which files hold.
#pragma once

#include <string>
#include <string_view>

namespace demo_library {

// Both raise failure_t for a text that is not valid in its encoding.
std::string to_utf8(std::wstring_view text);
std::wstring to_wide(std::string_view text);

}  // namespace demo_library
