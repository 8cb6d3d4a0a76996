#include "common/plugin/common_settings.h"

#include <boost/filesystem/path.hpp>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/owned.h"
#include "common/platform/path.h"
#include "common/plugin/log_component.h"
#include "common/win32.h"

namespace plugin {
namespace {

using exc::format_message;

// More than any settings need, and little enough for the parser, whose time grows with the square of the size.
constexpr DWORD largest_file = 65'536;

void require_settings_file(const std::wstring& path) {
    if (GetFileAttributesW(platform::system_path(path).c_str()) != INVALID_FILE_ATTRIBUTES) return;
    const DWORD code = GetLastError();
    // For any other reason, opening the file fails and tells it.
    if (code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND) {
        exc::raise("Cannot find plug-in manager configuration file");
    }
}

std::string read_text(const std::wstring& path) {
    plugin_common.info(format_message("Loading xml file [%1]", encoding::wide_to_utf8(path)));
    const platform::unique_file file(CreateFileW(platform::system_path(path).c_str(), GENERIC_READ,
                                                 FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                                 OPEN_EXISTING, 0, nullptr));
    if (!file) exc::raise_path_error(GetLastError(), "Failed to open configuration file from path: %1", path);
    std::string content(largest_file + 1, '\0');
    DWORD size = 0;
    if (!ReadFile(file.get(), content.data(), largest_file + 1, &size, nullptr)) {
        exc::raise_path_error(GetLastError(), "Failed to load configuration file: %1", path);
    }
    if (size > largest_file) exc::raise("The file is larger than 64 KiB.");
    content.resize(size);
    return content;
}

std::wstring find_settings_file(const std::wstring& directory) try {
    std::wstring path = (boost::filesystem::path(directory) / L"tovak_common_config.xml").wstring();
    require_settings_file(path);
    return path;
} catch (const std::exception& failure) {
    exc::rethrow_with_context(failure, "Failed to read plug-in manager configuration file");
}

common_settings_t read_settings_file(const std::wstring& path) try {
    return parse_settings(read_text(path));
} catch (const std::exception& failure) {
    const char* reason = failure.what();
    plugin_common.log(logging::level_warning,
                      format_message("Unable to load params from file [%1]. %2",
                                     {encoding::wide_to_utf8(path), reason == nullptr ? "Unknown error" : reason}));
    return {};
}

common_settings_t read_or_default(const std::wstring& directory) try {
    return read_settings_file(find_settings_file(directory));
} catch (const std::exception& failure) {
    const char* reason = failure.what();
    plugin_common.log(logging::level_warning,
                      format_message("Unable to init plugin manager settings. Using default values. %1",
                                     reason == nullptr ? "Unknown reason" : reason));
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
