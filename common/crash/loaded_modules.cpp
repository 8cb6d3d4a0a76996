#include "common/crash/loaded_modules.h"

#include <array>
#include <cstdio>

#include "common/platform/owned.h"
#include "common/platform/version_resource.h"
#include "common/text/convert.h"

#include <psapi.h>

namespace crash {
namespace {

std::vector<HMODULE> module_handles() {
    std::vector<HMODULE> handles(256);
    for (;;) {
        const auto size = static_cast<DWORD>(handles.size() * sizeof(HMODULE));
        DWORD needed = 0;
        if (!K32EnumProcessModules(GetCurrentProcess(), handles.data(), size, &needed)) return {};
        handles.resize(needed / sizeof(HMODULE));
        if (needed <= size) return handles;
    }
}

}  // namespace

std::vector<module_t> loaded_modules() {
    std::vector<module_t> modules;
    for (const HMODULE handle : module_handles()) {
        MODULEINFO info{};
        std::array<wchar_t, 1024> path{};
        if (!K32GetModuleInformation(GetCurrentProcess(), handle, &info, sizeof info)) continue;
        GetModuleFileNameW(handle, path.data(), static_cast<DWORD>(path.size()));
        const auto begin = reinterpret_cast<std::uint64_t>(info.lpBaseOfDll);
        modules.push_back({begin, begin + info.SizeOfImage, path.data()});
    }
    return modules;
}

std::string describe(const module_t& module, const symbols_t& symbols) {
    std::array<char, 64> addresses{};
    std::snprintf(addresses.data(), addresses.size(), "0x%08llx - 0x%08llx ", module.begin, module.end);
    const std::string path = text::wide_to_utf8(module.path);
    const std::string version = platform::read_version_resource(module.path).file_version;
    return addresses.data() + path.substr(path.find_last_of("\\/") + 1) + " (" + path + ") " +
           (version.empty() ? "0.0.0.0" : version) + ", " + symbols.describe_module(module.begin);
}

}  // namespace crash
