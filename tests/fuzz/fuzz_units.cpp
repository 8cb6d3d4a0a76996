#include "tests/fuzz/fuzz_units.h"

#include <sstream>

#include "common/exc/exceptions.h"
#include "common/plugin/settings_text.h"

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

// The pieces between the "~" of a text that may contain zeros.
template <std::size_t size>
std::vector<std::string> words(const char (&text)[size]) {
    std::vector<std::string> found(1);
    for (const char c : std::string(text, size - 1)) c == '~' ? found.emplace_back() : found.back() += c;
    return found;
}

std::string form_of(const exc::exc_base_t& failure) {
    std::ostringstream stream;
    failure.write(stream);
    return stream.str();
}

std::vector<std::string> values_of(const plugin::common_settings_t& settings) {
    return {std::to_string(settings.minPluginManagerPort), std::to_string(settings.managerConnectionAttempsCount),
            settings.managerLockDir, settings.logsDir};
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
    {"settings", check_settings,
     words("<Config><PluginParameters ~logsDir='x' ~minPluginManagerPort='7001' ~/></Config>~<logsDir></logsDir>~"
           "<managerLockDir>~</managerLockDir>~<minPluginManagerPort>-1</minPluginManagerPort>~<~>~/>~='~'~&#x~&amp;~;~"
           "<!--~-->~<![CDATA[~]]>~<!~<?xml ~encoding='~UTF-8~?>~\xef\xbb\xbf~\xef\xbb\xbf<a>\xf0")},
};
