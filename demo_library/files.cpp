#include "demo_library/files.h"

#include <memory>

#include "demo_library/failure.h"

#include <windows.h>
#include <sddl.h>

namespace demo_library {
namespace {

struct close_handle_t {
    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};
using handle_t = std::unique_ptr<void, close_handle_t>;

// Null on failure, with the last error as the call left it.
handle_t open_file(const std::wstring& path, DWORD access, DWORD disposition, SECURITY_ATTRIBUTES* security = nullptr) {
    const HANDLE file = CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_DELETE, security, disposition,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    return handle_t(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

// Full access for the system, the administrators and the owner (S-1-3-4), nothing for others, nothing inherited.
class administrators_only_t {
public:
    administrators_only_t() {
        if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:P(A;;FA;;;SY)(A;;FA;;;BA)(A;;FA;;;S-1-3-4)",
                                                                  SDDL_REVISION_1, &attributes_.lpSecurityDescriptor,
                                                                  nullptr))
            raise_system_failure(GetLastError(), L"Cannot prepare the access rights of a file");
    }
    ~administrators_only_t() { LocalFree(attributes_.lpSecurityDescriptor); }
    administrators_only_t(const administrators_only_t&) = delete;
    administrators_only_t& operator=(const administrators_only_t&) = delete;
    SECURITY_ATTRIBUTES* get() noexcept { return &attributes_; }

private:
    SECURITY_ATTRIBUTES attributes_{sizeof(SECURITY_ATTRIBUTES), nullptr, FALSE};
};

handle_t create_file(const std::wstring& path, readers_t readers) {
    if (readers == readers_t::everyone) return open_file(path, GENERIC_WRITE, CREATE_ALWAYS);
    DeleteFileW(path.c_str());  // an existing file would keep its own access rights
    administrators_only_t security;
    return open_file(path, GENERIC_WRITE, CREATE_NEW, security.get());
}

// The code of the failing call, like the functions below.
DWORD create_folders(const std::wstring& folder) {
    if (GetFileAttributesW(folder.c_str()) != INVALID_FILE_ATTRIBUTES) return ERROR_SUCCESS;
    const std::size_t separator = folder.find_last_of(L'\\');
    if (separator != std::wstring::npos && separator > 0) {
        const DWORD code = create_folders(folder.substr(0, separator));
        if (code != ERROR_SUCCESS) return code;
    }
    if (CreateDirectoryW(folder.c_str(), nullptr)) return ERROR_SUCCESS;
    const DWORD code = GetLastError();
    return code == ERROR_ALREADY_EXISTS ? ERROR_SUCCESS : code;  // another process may have been quicker
}

DWORD write_all(HANDLE file, std::string_view content) {
    DWORD written = 0;
    const bool good = WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr) &&
                      FlushFileBuffers(file);
    return good ? ERROR_SUCCESS : GetLastError();
}

DWORD replace_content(const std::wstring& path, const std::wstring& temporary, std::string_view content,
                      readers_t readers) {
    handle_t file = create_file(temporary, readers);
    if (!file) return GetLastError();
    const DWORD code = write_all(file.get(), content);
    file.reset();
    if (code != ERROR_SUCCESS) return code;
    if (MoveFileExW(temporary.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return ERROR_SUCCESS;
    return GetLastError();
}

}  // namespace

std::optional<std::string> read_file(const std::wstring& path) {
    const handle_t file = open_file(path, GENERIC_READ, OPEN_EXISTING);
    const DWORD code = file ? ERROR_SUCCESS : GetLastError();
    if (code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND) return std::nullopt;
    LARGE_INTEGER size{};
    if (code != ERROR_SUCCESS || !GetFileSizeEx(file.get(), &size))
        raise_system_failure(code != ERROR_SUCCESS ? code : GetLastError(), L"Cannot read the file " + path);
    std::string content(static_cast<std::size_t>(size.QuadPart), '\0');
    DWORD received = 0;
    if (!ReadFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &received, nullptr))
        raise_system_failure(GetLastError(), L"Cannot read the file " + path);
    content.resize(received);
    return content;
}

void write_file(const std::wstring& path, std::string_view content, readers_t readers) {
    const std::wstring full = absolute_path(path);
    const std::wstring temporary = full + L".tmp";
    DWORD code = create_folders(full.substr(0, full.find_last_of(L'\\')));
    if (code == ERROR_SUCCESS) code = replace_content(full, temporary, content, readers);
    if (code == ERROR_SUCCESS) return;
    DeleteFileW(temporary.c_str());
    raise_system_failure(code, L"Cannot write the file " + full);
}

void remove_file(const std::wstring& path) {
    if (DeleteFileW(path.c_str())) return;
    const DWORD code = GetLastError();
    if (code != ERROR_FILE_NOT_FOUND && code != ERROR_PATH_NOT_FOUND)
        raise_system_failure(code, L"Cannot remove the file " + path);
}

std::wstring absolute_path(const std::wstring& path) {
    if (path.empty()) throw failure_t(L"The path of a file is empty");
    std::wstring full(path.size() + MAX_PATH, L'\0');
    for (;;) {
        const DWORD size = GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
        if (size == 0) raise_system_failure(GetLastError(), L"The path [" + path + L"] cannot be used");
        const bool fits = size < full.size();
        full.resize(size);
        if (fits) return full;
    }
}

std::wstring library_folder() {
    HMODULE library = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&library_folder), &library);
    std::wstring path(32768, L'\0');  // the longest path there is
    path.resize(GetModuleFileNameW(library, path.data(), static_cast<DWORD>(path.size())));
    return path.substr(0, path.find_last_of(L'\\'));
}

std::wstring environment_text(const wchar_t* name) {
    const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
    std::wstring value(size, L'\0');
    value.resize(GetEnvironmentVariableW(name, value.data(), size));
    return value;
}

}  // namespace demo_library
