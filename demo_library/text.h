// Conversions between UTF-16, which the binary interface uses, and UTF-8, which the files use.
#pragma once

#include <string>
#include <string_view>

namespace demo_library {

// Both throw error_t when the text is not valid in its encoding.
std::string to_utf8(std::wstring_view text);
std::wstring to_wide(std::string_view text);

}  // namespace demo_library
