#include "common/plugin/settings_text.h"

#include "tests/fuzz/fuzz_units.h"

static std::vector<std::string> values_of(const plugin::common_settings_t& settings) {
    return {std::to_string(settings.minPluginManagerPort), std::to_string(settings.managerConnectionAttempsCount),
            settings.managerLockDir, settings.logsDir};
}

// The input is once the whole text, and once the content of the element with the values.
void fuzz::check_settings(const std::string& input) {
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
