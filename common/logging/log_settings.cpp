#include "common/logging/log_settings.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "common/exc/raise.h"
#include "common/platform/owned.h"
#include "common/platform/path.h"
#include "common/platform/registry.h"

#include <shellapi.h>
#include <shlobj.h>

namespace logging {
namespace {

constexpr const wchar_t* product_key = L"SOFTWARE\\Tovak\\Tovak Central";

struct argument_list_traits_t {
    using type = wchar_t**;
    static type invalid() noexcept { return nullptr; }
    // The arguments may contain a password.
    static void close(type value) noexcept {
        SecureZeroMemory(value, LocalSize(value));
        LocalFree(value);
    }
};

std::wstring common_application_data() {
    std::array<wchar_t, MAX_PATH> path{};
    const HRESULT result = SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, path.data());
    if (result != S_OK) {
        exc::raise_win_error(static_cast<std::uint32_t>(result), "Cannot get the common application-data folder.");
    }
    return path.data();
}

}  // namespace

std::wstring base_log_directory() {
    const auto value = platform::find_registry_value(product_key, L"LogDirectory");
    const std::optional<std::wstring> directory = value ? value->text() : std::nullopt;
    if (directory && !directory->empty()) return *directory;
    return common_application_data() + L"\\Tovak\\Backup\\";
}

std::wstring log_folder_path(const std::wstring& folder) {
    return platform::full_path(platform::join_path(base_log_directory(), folder));
}

size_limits_t read_size_limits() {
    constexpr std::uint32_t max_archives = 1000;
    const auto size_value = platform::find_registry_value(product_key, L"AgentMaxLogSize");
    const auto count_value = platform::find_registry_value(product_key, L"AgentMaxLogCount");
    if (!size_value || !count_value) return {};
    std::optional<std::uint64_t> size = size_value->dword();
    if (!size) size = size_value->qword();
    const auto count = count_value->dword();
    if (!size || !count) return {};
    return {*size, std::min(*count, max_archives)};
}

const size_limits_t& process_size_limits() {
    static const size_limits_t limits = read_size_limits();
    return limits;
}

command_switches_t find_switches(const wchar_t* command_line) {
    int count = 0;
    const platform::unique_t<argument_list_traits_t> arguments(CommandLineToArgvW(command_line, &count));
    if (!arguments) exc::raise_win_error(GetLastError(), "Cannot split the command line.");
    command_switches_t found;
    for (int i = 1; i < count; ++i) {
        const std::wstring_view argument = arguments.get()[i];
        found.echo |= argument == L"-log";
        found.verbose |= argument == L"-verbose";
    }
    return found;
}

}  // namespace logging
