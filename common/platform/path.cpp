#include "common/platform/path.h"

#include "common/exc/raise.h"
#include "common/win32.h"

namespace platform {
namespace {

constexpr const wchar_t* separators = L"\\/";

bool is_directory(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(system_path(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace

std::wstring parent_of(const std::wstring& path) {
    const std::size_t separator = path.find_last_of(separators);
    if (separator == std::wstring::npos) return {};
    const bool is_root = separator == 0 || path[separator - 1] == L':';
    return path.substr(0, is_root ? separator + 1 : separator);
}

std::wstring file_name_of(const std::wstring& path) { return path.substr(path.find_last_of(separators) + 1); }

std::wstring join_path(const std::wstring& folder, const std::wstring& name) {
    const bool separated = folder.ends_with(L'\\') || folder.ends_with(L'/');
    return folder + (separated ? L"" : L"\\") + name;
}

std::wstring full_path(const std::wstring& path) {
    std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    const DWORD size = GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (size == 0 || size >= full.size()) return path;
    full.resize(size);
    return full;
}

std::wstring system_path(const std::wstring& path) {
    if (path.starts_with(L"\\\\?\\") || path.starts_with(L"\\\\.\\")) return path;
    std::wstring full = full_path(path);
    if (full.starts_with(L"\\\\.\\")) return full;  // a name such as NUL
    if (full.starts_with(L"\\\\")) return L"\\\\?\\UNC" + full.substr(1);
    return full.size() >= 2 && full[1] == L':' ? L"\\\\?\\" + full : full;
}

std::wstring final_path(HANDLE opened) {
    std::wstring path(GetFinalPathNameByHandleW(opened, nullptr, 0, FILE_NAME_NORMALIZED), L'\0');
    const DWORD size =
        GetFinalPathNameByHandleW(opened, path.data(), static_cast<DWORD>(path.size()), FILE_NAME_NORMALIZED);
    if (size >= path.size()) return {};
    path.resize(size);
    return path;
}

bool same_path(const std::wstring& first, const std::wstring& second) {
    return CompareStringOrdinal(first.data(), static_cast<int>(first.size()), second.data(),
                                static_cast<int>(second.size()), TRUE) == CSTR_EQUAL;
}

void create_directories(const std::wstring& path) {
    if (path.empty() || is_directory(path)) return;
    if (CreateDirectoryW(system_path(path).c_str(), nullptr)) return;
    DWORD code = GetLastError();
    if (code == ERROR_PATH_NOT_FOUND && parent_of(path) != path) {
        create_directories(parent_of(path));
        code = CreateDirectoryW(system_path(path).c_str(), nullptr) ? ERROR_SUCCESS : GetLastError();
    }
    // Another process may have been quicker.
    if (code == ERROR_SUCCESS || is_directory(path)) return;
    exc::raise_path_error(code, "Cannot create directory [%1].", path);
}

std::wstring expand_variables(const std::wstring& text) {
    std::wstring result(ExpandEnvironmentStringsW(text.c_str(), nullptr, 0), L'\0');
    const DWORD size = ExpandEnvironmentStringsW(text.c_str(), result.data(), static_cast<DWORD>(result.size()));
    if (size == 0 || size > result.size()) return text;
    result.resize(size - 1);
    return result;
}

}  // namespace platform
