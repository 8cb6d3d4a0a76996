// Control characters of UTF-8: U+0000 to U+001F without the tab, and U+007F to U+009F.
#pragma once

#include <string>
#include <string_view>

namespace encoding {

// Returns whether the text certainly has no control character. Quick: it is asked for each record of the log.
bool is_plain(std::string_view text) noexcept;

// Returns the text with \x and two hexadecimal digits in place of each control character.
std::string with_visible_controls(std::string_view text);

}  // namespace encoding
