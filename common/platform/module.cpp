#include "common/platform/module.h"

#include "common/exc/raise.h"

namespace platform {

std::wstring module_path(HMODULE module) {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD size = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (size == 0) exc::raise_win_error(GetLastError(), "Cannot get module path.");
        if (size < path.size()) {
            path.resize(size);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

}  // namespace platform
