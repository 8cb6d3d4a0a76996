#include "wizard/shown_text.h"

#include <algorithm>

namespace wizard {
namespace {

constexpr wchar_t replacement = L'\xfffd';

bool IsControl(wchar_t unit) { return unit < 0x20 || (unit >= 0x7f && unit < 0xa0); }

// Arabic letter mark; left-to-right and right-to-left marks; line and paragraph separators, embeddings and overrides;
// isolates.
bool IsMark(wchar_t unit) {
    return unit == 0x61c || unit == 0x200e || unit == 0x200f || (unit >= 0x2028 && unit <= 0x202e) ||
           (unit >= 0x2066 && unit <= 0x2069);
}

bool Misleads(wchar_t unit) { return IsControl(unit) || IsMark(unit); }

}  // namespace

std::wstring ShownValue(std::wstring value) {
    std::ranges::replace_if(value, Misleads, replacement);
    return value;
}

std::wstring ShownText(std::wstring text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool ends_line = text[i] == L'\n' || (text[i] == L'\r' && text[i + 1] == L'\n');
        if (Misleads(text[i]) && text[i] != L'\t' && !ends_line) text[i] = replacement;
    }
    return text;
}

}  // namespace wizard
