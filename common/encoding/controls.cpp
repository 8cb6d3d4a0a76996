#include "common/encoding/controls.h"

#include <algorithm>
#include <array>

namespace encoding {
namespace {

constexpr unsigned char c1_lead = 0xC2;  // of the characters from U+0080 to U+00BF

// A table is quicker than comparisons.
constexpr auto may_begin_control = [] {
    std::array<bool, 256> table{};
    std::fill_n(table.begin(), 0x20, true);
    table['\t'] = false;
    table[0x7F] = table[c1_lead] = true;
    return table;
}();

}  // namespace

bool is_plain(std::string_view text) noexcept {
    return std::ranges::none_of(text, [](unsigned char unit) { return may_begin_control[unit]; });
}

std::string with_visible_controls(std::string_view text) {
    constexpr const char* digits = "0123456789ABCDEF";
    std::string visible;
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto unit = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        const bool is_c1 = unit == c1_lead && next >= 0x80 && next < 0xA0;
        if (is_c1) unit = static_cast<unsigned char>(text[++i]);  // its second byte is its number
        if (is_c1 || (may_begin_control[unit] && unit != c1_lead)) {
            visible.append("\\x").append(1, digits[unit / 16]).append(1, digits[unit % 16]);
        } else {
            visible += text[i];
        }
    }
    return visible;
}

}  // namespace encoding
