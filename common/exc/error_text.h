#pragma once

#include <cstdint>
#include <string>

namespace exc {

// The English text for a Win32 or WinINet error code, in UTF-8, without trailing line breaks. Never empty and never
// raises for a code: one that nobody knows gets the generic text of the error category.
std::string get_error_text(std::uint32_t code);

}  // namespace exc
