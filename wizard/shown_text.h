// Texts from outside, as the screen may show them. Otherwise the name of a repository could rewrite the list around
// it.
#pragma once

#include <string>

namespace wizard {

// Returns a value that is shown on one line, with U+FFFD in place of each control character, line separator and mark
// that changes the direction of the text.
std::wstring ShownValue(std::wstring value);

// The same for a text that may have several lines: tabs and line ends (LF and CR LF) remain.
std::wstring ShownText(std::wstring text);

}  // namespace wizard
