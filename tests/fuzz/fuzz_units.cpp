#include "tests/fuzz/fuzz_units.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <optional>
#include <set>
#include <sstream>

#include "common/exc/exceptions.h"
#include "common/exc/format_message.h"
#include "common/plugin/settings_text.h"
#include "wizard/repository_selection.h"

namespace {

void require(bool holds, const char* property) {
    if (!holds) throw std::logic_error(property);
}

template <class Call>
bool refuses(Call call) try {
    call();
    return false;
} catch (const exc::runtime_exc_t&) {
    return true;
}

// Returns the texts between the separators, at least this many.
std::vector<std::string> pieces(const std::string& text, char separator, std::size_t least = 0) {
    std::vector<std::string> found(1);
    for (const char c : text) c == separator ? found.emplace_back() : found.back() += c;
    found.resize(std::max(found.size(), least));
    return found;
}

// Of a text that may contain zeros.
template <std::size_t size>
std::vector<std::string> words(const char (&text)[size]) {
    return pieces(std::string(text, size - 1), '~');
}

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

std::vector<std::string> values_of(const plugin::common_settings_t& settings) {
    return {std::to_string(settings.minPluginManagerPort), std::to_string(settings.managerConnectionAttempsCount),
            settings.managerLockDir, settings.logsDir};
}

// The answer, anything for the Standard Edition, and a character for each repository offered.
void check_selection(const std::string& input) {
    const std::vector<std::string> parts = pieces(input, '|', 3);
    const std::wstring answer(parts[0].begin(), parts[0].end());
    const auto edition = parts[1].empty() ? conf_tool::Edition::Unlimited : conf_tool::Edition::Standard;
    std::vector<conf_tool::RepositoryEntry> offered(parts[2].size()), selected;
    for (std::size_t i = 0; i < offered.size(); ++i) offered[i].id = std::to_wstring(i + 1);
    std::vector<int> numbers;
    for (const std::string& token : pieces(parts[0], ' ')) {
        if (!token.empty()) numbers.push_back(plain_integer(token).value_or(0));
    }
    const bool allowed = (numbers.size() <= 1 || edition != conf_tool::Edition::Standard) &&
                         std::set(numbers.begin(), numbers.end()).size() == numbers.size() &&
                         std::ranges::all_of(numbers, [&](int n) { return n >= 1 && n <= std::ssize(offered); });
    const bool refused = refuses([&] { selected = wizard::SelectRepositories(answer, offered, edition); });
    require(refused == !allowed, "obeys the rules");
    const auto is_number = [](const auto& entry, int number) { return entry.id == std::to_wstring(number); };
    require(refused || std::ranges::equal(selected, numbers, is_number), "selects in the order typed");
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
    arguments.resize(2);
    require(exc::format_message(format, {arguments[0], arguments[1]}) == plain_format(format, arguments),
            "formats a list");
    require(exc::format_message(format, arguments[0]) == plain_format(format, {arguments[0]}), "formats one argument");
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
        }
    }
}

}  // namespace

const std::vector<fuzz::unit_t> fuzz::units = {
    {"exception", check_exception,
     words("\0\0\0\0~\1\0\0\0~\2\0\0\0~\xff\xff\xff\xff~\1\0\0\0\3\0\0\0why\1\x9\0\0\0\0\0\0\0~"
           "\2\0\0\0\0\0\0\0\0\1\0\0\0x\1\x9\0\0\0\2\0\0\0\1\0\0\0\0\0\0\0\3\0\0\0\1\0\0\0x")},
    {"format", check_format, words("%~%1~%2~%3~% +1~%-~%0~%4294967296~%\t-4294967295~|")},
    {"selection", check_selection,
     words(" ~1 ~ 2~3 ~2147483648 ~4294967297 ~4294967298 ~+4 ~05 ~0 ~-1~  ~|~||6 rep.|~|SE|6 rep.|")},
    {"settings", check_settings,
     words("<Config><PluginParameters ~logsDir='x' ~minPluginManagerPort='7001' ~/></Config>~<logsDir></logsDir>~"
           "<managerLockDir>~</managerLockDir>~<minPluginManagerPort>-1</minPluginManagerPort>~<~>~/>~='~'~&#x~&amp;~;~"
           "<!--~-->~<![CDATA[~]]>~<!~<?xml ~encoding='~UTF-8~?>~\xef\xbb\xbf~\xef\xbb\xbf<a>\xf0")},
};
