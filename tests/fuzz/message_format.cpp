#include "common/exc/format_message.h"

#include <cstdlib>

#include "tests/fuzz/fuzz_units.h"

// Character by character, with the runtime library's own reader of numbers.
static std::string plain_format(const std::string& format, const std::vector<std::string>& arguments) {
    std::string result;
    for (const char* at = format.c_str(); at < format.c_str() + format.size();) {
        char* end = nullptr;
        const long long number = std::strtoll(at + 1, &end, 10);
        if (*at != '%' || end == at + 1) {
            result += *at++;
            continue;
        }
        at = end;
        const bool fits = number <= 0xffffffffLL && number >= -0xffffffffLL;
        const unsigned value = fits ? static_cast<unsigned>(number) : 0xffffffffU;
        result += value >= 1 && value <= arguments.size() ? arguments[value - 1] : "%" + std::to_string(value);
    }
    return result;
}

void fuzz::check_format(const std::string& input) {
    std::vector<std::string> arguments = pieces(input, '|', 3);
    const std::string format = arguments.front();
    arguments.erase(arguments.begin());
    require(exc::format_message(format, arguments) == plain_format(format, arguments), "formats a vector");
    const std::string_view first = arguments[0], second = arguments[1];
    arguments.resize(2);
    require(exc::format_message(format, {first, second}) == plain_format(format, arguments), "formats a list");
    require(exc::format_message(format, arguments[0]) == plain_format(format, {arguments[0]}), "formats one argument");
}
