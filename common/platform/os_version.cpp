#include "common/platform/os_version.h"

#include "common/exc/format_message.h"
#include "common/text/convert.h"
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

}  // namespace

std::string os_version_text() {
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof version;
    const auto get_version = reinterpret_cast<RtlGetVersionFn>(
        reinterpret_cast<void (*)()>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion")));
    if (get_version == nullptr || get_version(&version) != 0) return "unknown";
    const std::string text =
        exc::format_message("Windows %1.%2.%3 (%4, %5)",
                            {std::to_string(version.dwMajorVersion), std::to_string(version.dwMinorVersion),
                             std::to_string(version.dwBuildNumber),
                             version.wProductType == VER_NT_WORKSTATION ? "workstation" : "server", architecture()});
    return version.szCSDVersion[0] == L'\0' ? text : text + " " + text::wide_to_utf8(version.szCSDVersion);
}

}  // namespace platform
