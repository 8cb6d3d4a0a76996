#include "tests/fuzz/fuzz_units.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <set>
#include <sstream>

#include "common/exc/format_message.h"
#include "common/logging/sink.h"
#include "common/plugin/settings_text.h"
#include "wizard/answers.h"
#include "wizard/repository_selection.h"
#include "wizard/shown_text.h"

namespace fuzz {

const std::vector<unit_t>& units() {
    constexpr char exceptions[] =
        "\0\0\0\0~\1\0\0\0~\2\0\0\0~\xff\xff\xff\xff~\1\0\0\0\3\0\0\0why\1\x9\0\0\0\0\0\0\0~"
        "\2\0\0\0\0\0\0\0\0\1\0\0\0x\1\x9\0\0\0\2\0\0\0\1\0\0\0\0\0\0\0\3\0\0\0\1\0\0\0x";
    constexpr char settings[] =
        "<Config><PluginParameters ~logsDir='x' ~minPluginManagerPort='7001' ~/></Config>~<logsDir></logsDir>~"
        "<managerLockDir>~</managerLockDir>~<minPluginManagerPort>-1</minPluginManagerPort>~<~>~/>~='~'~&#x~&amp;~;~"
        "<!--~-->~<![CDATA[~]]>~<!~<?xml ~encoding='~UTF-8~?>~\xef\xbb\xbf~\xef\xbb\xbf<a>\xf0";
    constexpr char units[] =
        "a\0~\n\0~\r\0\n\0~\r\0~\t\0~\x1f\0~\x7f\0~\x9f\0~\x1c\x06~\x0e\x20~\x29\x20~\x2e\x20~\x66\x20~\x69\x20";
    static const std::vector<unit_t> all = {
        {"exception", check_exception, pieces({exceptions, sizeof exceptions - 1}, '~')},
        {"format", check_format, pieces("%~%1~%2~%3~% +1~%-~%0~%4294967296~%\t-4294967295~|", '~')},
        {"lines", check_lines, pieces("\n~\r\n~\r~|~4~3~prefix ~0123456789abcde~sixteen or more ", '~')},
        {"selection", check_selection,
         pieces(" ~1 ~ 2~3 ~2147483648 ~4294967297 ~4294967298 ~+4 ~05 ~0 ~-1~  ~|~||6 rep.|~|SE|6 rep.|", '~')},
        {"settings", check_settings, pieces(settings, '~')},
        {"shown", check_shown, pieces({units, sizeof units - 1}, '~')},
    };
    return all;
}

std::vector<std::string> pieces(const std::string& text, char separator, std::size_t least) {
    std::vector<std::string> found(1);
    for (const char c : text) c == separator ? found.emplace_back() : found.back() += c;
    found.resize(std::max(found.size(), least));
    return found;
}

namespace {

std::wstring wide(const std::string& text) { return std::wstring(text.begin(), text.end()); }

std::optional<int> plain_integer(const std::string& text) {
    const std::size_t sign = text.starts_with('+') || text.starts_with('-') ? 1 : 0;
    if (text.size() == sign || text.find_first_not_of("0123456789", sign) != std::string::npos) return {};
    const long long value = std::strtoll(text.c_str(), nullptr, 10);
    return value < INT_MIN || value > INT_MAX ? std::nullopt : std::optional(static_cast<int>(value));
}

std::string form_of(const exc::exc_base_t& failure) {
    std::ostringstream stream;
    failure.write(stream);
    return stream.str();
}

// Character by character, with the runtime library's own reader of numbers.
std::string plain_format(const std::string& format, const std::vector<std::string>& arguments) {
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

struct joining_sink_t : logging::receiver::sink_t {
    void write_line(const logging::line_t& line) override {
        require(line.piece.find('\n') == std::string_view::npos, "no line holds a line feed");
        joined.append(count++ == 0 ? "" : "\n").append(line.piece);
        std::string text;
        append_file_line(text, line);
        require(text.ends_with(line.piece), "a line ends in its piece");
    }

    std::string joined;
    std::size_t count = 0;
};

std::vector<std::string> values_of(const plugin::common_settings_t& settings) {
    return {std::to_string(settings.minPluginManagerPort), std::to_string(settings.managerConnectionAttempsCount),
            settings.managerLockDir, settings.logsDir};
}

}  // namespace

// The answer, anything for the Standard Edition, and a character for each repository offered.
void check_selection(const std::string& input) {
    const std::vector<std::string> parts = pieces(input, '|', 3);
    const int edition = parts[1].empty() ? 2 : wizard::standard_edition;
    std::vector<conf_tool::RepositoryEntry> offered(parts[2].size()), selected;
    for (std::size_t i = 0; i < offered.size(); ++i) offered[i].id = std::to_wstring(i + 1);
    std::vector<int> numbers;
    for (const std::string& token : pieces(parts[0], ' ')) {
        if (!token.empty()) numbers.push_back(plain_integer(token).value_or(0));
    }
    const bool allowed = (numbers.size() <= 1 || edition != wizard::standard_edition) &&
                         std::set(numbers.begin(), numbers.end()).size() == numbers.size() &&
                         std::ranges::all_of(numbers, [&](int n) { return n >= 1 && n <= std::ssize(offered); });
    const bool refused = refuses([&] { selected = wizard::SelectRepositories(wide(parts[0]), offered, edition); });
    require(refused == !allowed, "obeys the rules");
    const auto is_number = [](const auto& entry, int number) { return entry.id == std::to_wstring(number); };
    require(refused || std::ranges::equal(selected, numbers, is_number), "selects in the order typed");
    std::wstring text;
    for (const int number : numbers) text += (text.empty() ? L"" : L" ") + std::to_wstring(number);
    require(refused || wizard::SelectionText(selected, offered) == text, "has a text with the same numbers");
}

void check_exception(const std::string& input) {
    exc::runtime_exc_t failure;
    const std::string empty = form_of(failure);
    std::istringstream stream(input);
    if (refuses([&] { failure.read(stream); })) {
        require(form_of(failure) == empty && *failure.what() == '\0', "a refused form changes nothing");
        return;
    }
    const std::string form = form_of(failure);
    require(form.size() == static_cast<std::size_t>(stream.tellg()), "is written again in the same length");
    for (std::size_t i = 0; i < form.size(); ++i) {
        require(form[i] == input[i] || (form[i] == 1 && input[i] != 0), "is written again, true flags as 1");
    }
}

void check_format(const std::string& input) {
    std::vector<std::string> arguments = pieces(input, '|', 3);
    const std::string format = arguments.front();
    arguments.erase(arguments.begin());
    require(exc::format_message(format, arguments) == plain_format(format, arguments), "formats a vector");
    const std::string_view first = arguments[0], second = arguments[1];
    arguments.resize(2);
    require(exc::format_message(format, {first, second}) == plain_format(format, arguments), "formats a list");
    require(exc::format_message(format, arguments[0]) == plain_format(format, {arguments[0]}), "formats one argument");
}

std::string shown_controls(const std::string& text) {
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool is_c1 = text[i] == '\xc2' && i + 1 < text.size() && (text[i + 1] & 0xe0) == 0x80;
        const unsigned code = static_cast<unsigned char>(text[is_c1 ? ++i : i]);
        const bool is_control = is_c1 || code == 127 || (code < 32 && code != '\t' && code != '\n');
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\x%02X", code);
        shown += is_control ? escape : std::string(1, text[i]);
    }
    return shown;
}

// The text, a character for each level and each step of depth, the prefix, and the time stamp.
void check_lines(const std::string& input) {
    std::vector<std::string> parts = pieces(input, '|', 5);
    logging::record_t record{.prefix = parts[3], .text = parts[0]};
    record.level = static_cast<unsigned>(parts[1].size());
    record.depth = static_cast<unsigned>(parts[2].size());
    joining_sink_t sink;
    sink.write({logging::time_stamp_t(parts[4]), 1U << input.size() % 32}, record);
    for (std::size_t at = 0; (at = parts[0].find("\r\n", at)) != std::string::npos;) parts[0].erase(at++, 1);
    require(sink.joined == shown_controls(parts[0]), "can be joined");
}

// Two bytes are one UTF-16 unit.
void check_shown(const std::string& input) {
    constexpr std::wstring_view marks =
        L"\u061c\u200e\u200f\u2028\u2029\u202a\u202b\u202c\u202d\u202e\u2066\u2067\u2068\u2069";
    std::wstring text;
    for (std::size_t i = 1; i < input.size(); i += 2) {
        text += static_cast<wchar_t>(input[i - 1] & 0xff) + static_cast<wchar_t>((input[i] & 0xff) << 8);
    }
    const std::wstring value = wizard::ShownValue(text), lines = wizard::ShownText(text);
    require(value.size() == text.size() && lines.size() == text.size(), "replaces unit by unit");
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool replaced = text[i] < 32 || (text[i] > 126 && text[i] < 160) || marks.find(text[i]) != marks.npos;
        require(value[i] == (replaced ? 0xfffd : text[i]), "replaces controls and marks in a value");
        const bool kept = text[i] == L'\t' || text[i] == L'\n' || text.compare(i, 2, L"\r\n") == 0;
        require(lines[i] == (kept ? text[i] : value[i]), "keeps tabs and line ends in a text");
    }
}

// The input is once the whole text, and once the content of the element with the values.
void check_settings(const std::string& input) {
    const char* const names[] = {"minPluginManagerPort", "managerConnectionAttempsCount", "managerLockDir", "logsDir"};
    const std::vector<std::string> defaults = values_of({});
    for (const auto& text : {input, "<Config><PluginParameters>" + input + "</PluginParameters></Config>"}) {
        std::vector<std::string> values = defaults;
        refuses([&] { values = values_of(plugin::parse_settings(text)); });
        for (std::size_t i = 0; i < values.size(); ++i) {
            require(values[i] == defaults[i] || input.find(names[i]) != std::string::npos, "keeps what has no name");
            require(i < 2 || values[i].size() <= input.size(), "takes no more than there is");
        }
    }
}

}  // namespace fuzz
