#include "demo_library/paths.h"

#include "demo_library/failure.h"

#include <windows.h>

namespace demo_library {

std::wstring absolute_path(const std::wstring& path) {
    if (path.empty()) throw failure_t(L"The path of a file is empty");
    std::wstring full(path.size() + MAX_PATH, L'\0');
    for (;;) {
        const DWORD size = GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
        const DWORD code = GetLastError();
        if (size == 0) throw_system_failure(code, L"The path [" + path + L"] cannot be used");
        const bool fits = size < full.size();
        full.resize(size);
        if (fits) return full;
    }
}

std::wstring folder_of(const std::wstring& path) { return path.substr(0, path.find_last_of(L'\\')); }

std::wstring library_folder() {
    HMODULE library = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&library_folder), &library);
    std::wstring path(32768, L'\0');  // the longest path there is
    path.resize(GetModuleFileNameW(library, path.data(), static_cast<DWORD>(path.size())));
    return folder_of(path);
}

std::wstring environment_text(const wchar_t* name) {
    const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
    std::wstring value(size, L'\0');
    value.resize(GetEnvironmentVariableW(name, value.data(), size));
    return value;
}

}  // namespace demo_library
