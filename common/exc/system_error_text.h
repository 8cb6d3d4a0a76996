// The texts that the system has for error codes.
#pragma once

#include <cstdint>
#include <string>

namespace exc {

// Returns the English text for a Win32 or WinINet error code, in UTF-8, without trailing line breaks. Never empty: an
// unknown code gets the generic text of the error category.
std::string get_error_text(std::uint32_t code);

}  // namespace exc
