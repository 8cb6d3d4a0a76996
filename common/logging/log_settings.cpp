#include "common/logging/log_settings.h"

#include <algorithm>
#include <array>
#include <optional>

#include "common/exc/raise.h"
#include "common/platform/registry.h"
#include "common/win32.h"

#include <shlobj.h>

namespace logging {
namespace {

constexpr const wchar_t* product_key = L"SOFTWARE\\Tovak\\Tovak Central";

std::wstring common_application_data() {
    std::array<wchar_t, MAX_PATH> path{};
    const HRESULT result = SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, path.data());
    if (result != S_OK) {
        exc::raise_win_error(static_cast<std::uint32_t>(result), "Cannot get the common application-data folder.");
    }
    return path.data();
}

std::optional<std::uint64_t> log_size() {
    const auto value = platform::find_registry_value(product_key, L"AgentMaxLogSize");
    if (!value) return std::nullopt;
    if (const auto number = value->dword()) return *number;
    return value->qword();
}

std::optional<std::uint32_t> archive_count() {
    const auto value = platform::find_registry_value(product_key, L"AgentMaxLogCount");
    return value ? value->dword() : std::nullopt;
}

}  // namespace

std::wstring base_log_directory() {
    const auto value = platform::find_registry_value(product_key, L"LogDirectory");
    const std::optional<std::wstring> directory = value ? value->text() : std::nullopt;
    if (directory && !directory->empty()) return *directory;
    return common_application_data() + L"\\Tovak\\Backup\\";
}

std::wstring log_folder_path(const std::wstring& folder) {
    std::wstring directory = base_log_directory();
    if (!directory.ends_with(L'\\') && !directory.ends_with(L'/')) directory += L'\\';
    return directory + folder;
}

size_limits_t read_size_limits() {
    constexpr std::uint32_t most_archives = 1000;
    const auto size = log_size();
    const auto count = archive_count();
    if (!size || !count) return {};
    return {*size, std::min(*count, most_archives)};
}

const size_limits_t& process_size_limits() {
    static const size_limits_t limits = read_size_limits();
    return limits;
}

}  // namespace logging
