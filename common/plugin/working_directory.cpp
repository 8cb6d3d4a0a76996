#include "common/plugin/working_directory.h"

#include <optional>

#include <boost/filesystem.hpp>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/module.h"
#include "common/platform/path.h"
#include "common/platform/registry.h"
#include "common/plugin/log_component.h"

namespace plugin {
namespace {

using exc::format_message;

std::optional<std::wstring> find_target_link_path() try {
    auto path = platform::read_registry_value(plugin_registry_key, link_target_path_value).text();
    if (!path || path->empty()) exc::raise("The registry value is not a text or is empty.");
    plugin_common.info(format_message("Target link path: %1", encoding::wide_to_utf8(*path)));
    return path;
} catch (const std::exception& failure) {
    plugin_common.info(format_message("Cannot find target link path in the registry: %1", failure.what()));
    return std::nullopt;
}

HMODULE module_of_this_code() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&module_of_this_code), &module);
    return module;
}

std::wstring module_directory() {
    const HMODULE module = module_of_this_code();
    const std::wstring path = platform::module_path(module);
    std::wstring folder = platform::parent_of(path);
    const std::string shown = encoding::wide_to_utf8(path);
    plugin_common.info(format_message(module == GetModuleHandleW(nullptr)
                                          ? "Getting current directory by module path [%1]"
                                          : "Getting current directory by dynamic lib path [%1]",
                                      shown));
    boost::system::error_code no_link;
    const boost::filesystem::path target = boost::filesystem::read_symlink(path, no_link);
    if (no_link || target.empty()) return folder;
    plugin_common.info(format_message("Path to executable [%1] is symlink to [%2]",
                                      {shown, encoding::wide_to_utf8(target.wstring())}));
    // A relative target starts at the link's folder.
    const auto resolved = boost::filesystem::absolute(target, folder).lexically_normal().make_preferred();
    return platform::parent_of(resolved.wstring());
}

std::wstring module_directory_or_empty() try { return module_directory(); } catch (const std::exception& failure) {
    plugin_common.log(logging::level_warning, failure.what());
    return {};
}

}  // namespace

std::wstring find_working_directory() {
    if (auto path = find_target_link_path()) return *path;
    std::wstring directory = module_directory_or_empty();
    if (directory.empty()) {
        boost::system::error_code unknown;
        directory = boost::filesystem::current_path(unknown).wstring();
        plugin_common.info(format_message("Failed to get current directory path. Temporary value [%1]",
                                          encoding::wide_to_utf8(directory)));
    }
    return directory;
}

}  // namespace plugin
