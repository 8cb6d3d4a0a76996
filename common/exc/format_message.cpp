#include "common/exc/format_message.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace exc {
namespace {

constexpr bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }

struct number_t {
    std::uint32_t value = 0;
    std::size_t length = 0;  // characters read; 0 if there are no digits
};

// strtoul in base 10 for a text that need not end in a null; unsigned long has 32 bits on this system.
number_t read_number(std::string_view text) {
    constexpr std::uint64_t limit = 0xffffffffU;
    std::size_t at = 0;
    while (at < text.size() && is_blank(text[at])) ++at;
    const bool negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (negative || text[at] == '+')) ++at;
    const std::size_t first_digit = at;
    std::uint64_t value = 0;
    for (; at < text.size() && is_digit(text[at]); ++at) {
        value = std::min(limit + 1, value * 10 + static_cast<std::uint64_t>(text[at] - '0'));
    }
    if (at == first_digit) return {};
    if (value > limit) return {static_cast<std::uint32_t>(limit), at};
    const auto magnitude = static_cast<std::uint32_t>(value);
    return {negative ? 0U - magnitude : magnitude, at};
}

template <class Text>
std::string format_with(std::string_view format, std::span<const Text> arguments) {
    std::size_t size = format.size();
    for (const Text& argument : arguments) size += argument.size();
    std::string result;
    result.reserve(size);
    for (std::size_t at = 0; at < format.size();) {
        const char c = format[at++];
        if (c != '%') {
            // One by one: the pieces are short, and calls to find and copy each one cost more than this loop.
            result.push_back(c);
            continue;
        }
        const number_t number = read_number(format.substr(at));
        if (number.length == 0) {
            result += '%';
        } else if (number.value >= 1 && number.value <= arguments.size()) {
            result.append(arguments[number.value - 1]);
        } else {
            result.append("%").append(std::to_string(number.value));
        }
        at += number.length;
    }
    return result;
}

}  // namespace

std::string format_message(std::string_view format, const std::string& argument) {
    return format_with(format, std::span(&argument, 1));
}

std::string format_message(std::string_view format, std::initializer_list<std::string_view> arguments) {
    return format_with(format, std::span(arguments.begin(), arguments.size()));
}

std::string format_message(std::string_view format, const std::vector<std::string>& arguments) {
    return format_with(format, std::span(arguments));
}

}  // namespace exc
