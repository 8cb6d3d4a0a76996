#include "common/plugin/common_settings.h"

#include "common/exc/format_message.h"
#include "common/logging/component.h"

namespace plugin {
namespace {

using exc::format_message;
using logging::plugin_common;

common_settings_t read_or_default(const std::wstring& directory) {
    try {
        return read_settings_file(find_settings_file(directory));
    } catch (const std::exception& failure) {
        const char* reason = failure.what();
        plugin_common.log(logging::level_warning,
                          format_message("Unable to init plugin manager settings. Using default values. %1",
                                         reason == nullptr ? "Unknown reason" : reason));
    }
    return {};
}

}  // namespace

common_settings_t load_common_settings(const std::wstring& directory) {
    common_settings_t settings = read_or_default(directory);
    plugin_common.info(format_message("Plugin manager port is [%1]", std::to_string(settings.minPluginManagerPort)));
    plugin_common.info(format_message("Plugin to manager connection attempts count is [%1]",
                                      std::to_string(settings.managerConnectionAttempsCount)));
    plugin_common.info(format_message("Manager lock directory is [%1]", settings.managerLockDir));
    plugin_common.info(format_message("Logs directory is [%1]", settings.logsDir));
    return settings;
}

}  // namespace plugin
