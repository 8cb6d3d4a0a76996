// The conversions between UTF-16 and narrow text. The program converts encodings only here.
//
// A source with an embedded null is truncated there. An empty source gives an empty result. On failure they throw
// exc::win_sys_exc_t with a sentence that names the conversion, and with the source if that is narrow.
#pragma once

#include <string>

namespace encoding {

// Both ANSI conversions are fixed from outside.
std::string wide_to_ansi(const std::wstring& source);
std::string wide_to_ansi(const wchar_t* source);
std::wstring ansi_to_wide(const std::string& source);

std::string wide_to_utf8(const std::wstring& source);
std::wstring utf8_to_wide(const std::string& source);

// Only for the system's error texts: never throws; returns an empty text if the source cannot be converted.
std::string wide_to_utf8_or_empty(const wchar_t* source) noexcept;

}  // namespace encoding
