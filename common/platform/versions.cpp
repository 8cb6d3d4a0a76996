#include "common/platform/versions.h"

#include <array>
#include <cstdio>
#include <vector>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/platform/module.h"
#include "common/win32.h"

namespace platform {
namespace {

using RtlGetVersionFn = LONG(WINAPI*)(OSVERSIONINFOEXW*);

const char* architecture() {
    SYSTEM_INFO system{};
    GetNativeSystemInfo(&system);
    switch (system.wProcessorArchitecture) {
        case PROCESSOR_ARCHITECTURE_AMD64:
            return "x64";
        case PROCESSOR_ARCHITECTURE_ARM64:
            return "arm64";
        default:
            return "unknown architecture";
    }
}

// Loaded at the first use, and kept. It is not imported: Windows looks for an import of this name in the program's
// folder first.
HMODULE version_library() {
    static const HMODULE library = LoadLibraryExW(L"version.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    return library;
}

struct translation_t {
    WORD language;
    WORD code_page;
};

template <class Value>
const Value* find(const std::vector<char>& resource, const wchar_t* name) {
    const auto query = find_function<decltype(&VerQueryValueW)>(version_library(), "VerQueryValueW");
    void* value = nullptr;
    UINT size = 0;
    const bool found = query != nullptr && query(resource.data(), name, &value, &size) && size > 0;
    return found ? static_cast<const Value*>(value) : nullptr;
}

std::string file_version(const std::vector<char>& resource) {
    const auto* info = find<VS_FIXEDFILEINFO>(resource, L"\\");
    if (info == nullptr) return {};
    std::array<char, 32> version{};
    std::snprintf(version.data(), version.size(), "%u.%u.%u.%u", HIWORD(info->dwFileVersionMS),
                  LOWORD(info->dwFileVersionMS), HIWORD(info->dwFileVersionLS), LOWORD(info->dwFileVersionLS));
    return version.data();
}

std::string comments(const std::vector<char>& resource) {
    const auto* translation = find<translation_t>(resource, L"\\VarFileInfo\\Translation");
    if (translation == nullptr) return {};
    std::array<wchar_t, 48> name{};
    swprintf(name.data(), name.size(), L"\\StringFileInfo\\%04x%04x\\Comments", translation->language,
             translation->code_page);
    const auto* value = find<wchar_t>(resource, name.data());
    return value == nullptr ? std::string() : encoding::wide_to_utf8(value);
}

}  // namespace

std::string os_version_text() {
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof version;
    const auto get_version = find_function<RtlGetVersionFn>(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion");
    if (get_version == nullptr || get_version(&version) != 0) return "unknown";
    const std::string text =
        exc::format_message("Windows %1.%2.%3 (%4, %5)",
                            {std::to_string(version.dwMajorVersion), std::to_string(version.dwMinorVersion),
                             std::to_string(version.dwBuildNumber),
                             version.wProductType == VER_NT_WORKSTATION ? "workstation" : "server", architecture()});
    return version.szCSDVersion[0] == L'\0' ? text : text + " " + encoding::wide_to_utf8(version.szCSDVersion);
}

version_resource_t read_version_resource(const std::wstring& path) {
    const auto size = find_function<decltype(&GetFileVersionInfoSizeW)>(version_library(), "GetFileVersionInfoSizeW");
    const auto read = find_function<decltype(&GetFileVersionInfoW)>(version_library(), "GetFileVersionInfoW");
    if (size == nullptr || read == nullptr) return {};
    std::vector<char> resource(size(path.c_str(), nullptr));
    if (!read(path.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data())) return {};
    return {file_version(resource), comments(resource)};
}

}  // namespace platform
