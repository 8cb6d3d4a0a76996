#include "common/plugin/common_settings.h"

#include <array>
#include <cstdio>
#include <memory>

#include <boost/filesystem.hpp>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/component.h"
#include "common/text/convert.h"

namespace plugin {
namespace {

using exc::format_message;
using logging::plugin_common;

// More than any settings need, and little enough to be read whole.
constexpr std::size_t largest_file = 1'048'576;

struct close_file_t {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

void require_settings_file(const std::wstring& path) {
    boost::system::error_code failure;
    if (!boost::filesystem::exists(path, failure)) exc::raise("Cannot find plug-in manager configuration file");
}

std::string read_text(const std::wstring& path) {
    const std::string name = text::wide_to_utf8(path);
    plugin_common.info(format_message("Loading xml file [%1]", name));
    const std::unique_ptr<std::FILE, close_file_t> file(_wfopen(path.c_str(), L"rb"));
    if (!file) exc::raise(format_message("Failed to open configuration file from path: %1", name));
    std::string content;
    std::array<char, 4096> chunk{};
    while (const std::size_t size = std::fread(chunk.data(), 1, chunk.size(), file.get())) {
        content.append(chunk.data(), size);
        if (content.size() > largest_file) exc::raise("The file is larger than 1 MiB.");
    }
    if (std::ferror(file.get())) exc::raise(format_message("Failed to load configuration file: %1", name));
    return content;
}

void log_unreadable(const std::wstring& path, const char* reason) {
    plugin_common.log(logging::level_warning,
                      format_message("Unable to load params from file [%1]. %2",
                                     {text::wide_to_utf8(path), reason == nullptr ? "Unknown error" : reason}));
}

std::wstring find_settings_file(const std::wstring& directory) try {
    std::wstring path = (boost::filesystem::path(directory) / L"tovak_common_config.xml").wstring();
    require_settings_file(path);
    return path;
} catch (const std::exception& failure) {
    exc::rethrow_with_context(failure, "Failed to read plug-in manager configuration file");
}

common_settings_t read_settings_file(const std::wstring& path) {
    try {
        return parse_settings(read_text(path));
    } catch (const std::exception& failure) {
        log_unreadable(path, failure.what());
    }
    return {};
}

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
