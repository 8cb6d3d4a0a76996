#include "common/logging/long_path.h"

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/module.h"
#include "common/text/convert.h"
#include "common/win32.h"

namespace logging {
namespace {

std::wstring full_path(const std::wstring& path) {
    std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    const DWORD size = GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (size == 0 || size >= full.size()) return path;
    full.resize(size);
    return full;
}

bool is_directory(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(system_path(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace

std::wstring system_path(const std::wstring& path) {
    constexpr std::size_t longest_directory = MAX_PATH - 13;  // room for a short file name is kept free
    if (path.starts_with(L"\\\\?\\")) return path;
    std::wstring full = full_path(path);
    if (full.size() <= longest_directory) return full;
    return full.starts_with(L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

void create_directories(const std::wstring& path) {
    if (path.empty() || is_directory(path)) return;
    if (CreateDirectoryW(system_path(path).c_str(), nullptr)) return;
    DWORD code = GetLastError();
    if (code == ERROR_PATH_NOT_FOUND) {
        create_directories(platform::parent_of(path));
        code = CreateDirectoryW(system_path(path).c_str(), nullptr) ? ERROR_SUCCESS : GetLastError();
    }
    // Another process may have been quicker.
    if (code == ERROR_SUCCESS || is_directory(path)) return;
    exc::raise_win_error(code, exc::format_message("Cannot create directory [%1].", text::wide_to_utf8(path)));
}

}  // namespace logging
