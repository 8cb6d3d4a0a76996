#include "demo_library/files.h"

#include <random>

#include "demo_library/error.h"

#include <windows.h>
#include <sddl.h>

namespace demo_library {
namespace {

constexpr ULONGLONG lock_timeout = 5000;  // milliseconds

HMODULE this_library() {
    HMODULE library = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&this_library), &library);
    return library;
}

bool means_missing(DWORD code) { return code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND; }

// Null on failure, with the last error as the call left it.
handle_t open_file(const std::wstring& path, DWORD access, DWORD share, DWORD disposition,
                   SECURITY_ATTRIBUTES* security = nullptr, DWORD flags = FILE_ATTRIBUTE_NORMAL) {
    const HANDLE file = CreateFileW(path.c_str(), access, share, security, disposition, flags, nullptr);
    return handle_t(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

// Full access for the system, the administrators and the owner (S-1-3-4), nothing for others, nothing inherited.
class administrators_only_t {
public:
    administrators_only_t() {
        if (ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:P(A;;FA;;;SY)(A;;FA;;;BA)(A;;FA;;;S-1-3-4)",
                                                                 SDDL_REVISION_1, &attributes_.lpSecurityDescriptor,
                                                                 nullptr))
            return;
        const DWORD code = GetLastError();
        throw_system_error(code, L"Cannot prepare the access rights of a file");
    }
    ~administrators_only_t() { LocalFree(attributes_.lpSecurityDescriptor); }
    administrators_only_t(const administrators_only_t&) = delete;
    administrators_only_t& operator=(const administrators_only_t&) = delete;
    SECURITY_ATTRIBUTES* get() noexcept { return &attributes_; }

private:
    SECURITY_ATTRIBUTES attributes_{sizeof(SECURITY_ATTRIBUTES), nullptr, FALSE};
};

// "<path>.1a2b3c4d.tmp", with random digits: nobody can plant a file under a name that is not known beforehand.
std::wstring temporary_name(const std::wstring& path) {
    wchar_t end[16];
    swprintf(end, std::size(end), L".%08x.tmp", std::random_device()());
    return path + end;
}

// Whether the name is one that temporary_name() makes for the file. It ends in ".tmp".
bool is_temporary_name(const std::wstring& name, const std::wstring& file) {
    constexpr std::size_t digits = 8;
    const int size = static_cast<int>(file.size());
    return name.size() == file.size() + 1 + digits + 4 &&
           CompareStringOrdinal(name.c_str(), size, file.c_str(), size, TRUE) == CSTR_EQUAL &&
           name.substr(file.size() + 1, digits).find_first_not_of(L"0123456789abcdef") == std::wstring::npos;
}

// This function and the next two return the code of the call that failed.
DWORD try_create_folders(const std::wstring& folder) {
    if (GetFileAttributesW(folder.c_str()) != INVALID_FILE_ATTRIBUTES) return ERROR_SUCCESS;
    const std::size_t separator = folder.find_last_of(L'\\');
    if (separator != std::wstring::npos && separator > 0) {
        const DWORD code = try_create_folders(folder.substr(0, separator));
        if (code != ERROR_SUCCESS) return code;
    }
    if (CreateDirectoryW(folder.c_str(), nullptr)) return ERROR_SUCCESS;
    const DWORD code = GetLastError();
    return code == ERROR_ALREADY_EXISTS ? ERROR_SUCCESS : code;  // another process may have been quicker
}

DWORD write_all(HANDLE file, std::string_view content) {
    DWORD written = 0;
    if (!WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr)) return GetLastError();
    if (written != content.size()) return ERROR_WRITE_FAULT;
    return FlushFileBuffers(file) ? ERROR_SUCCESS : GetLastError();
}

DWORD replace(const std::wstring& path, std::string_view content, SECURITY_ATTRIBUTES* security) {
    const std::wstring temporary = temporary_name(path);
    handle_t file = open_file(temporary, GENERIC_WRITE, 0, CREATE_NEW, security);
    if (!file) return GetLastError();  // whatever has that name is not ours to remove
    DWORD code = write_all(file.get(), content);
    file.reset();
    if (code == ERROR_SUCCESS &&
        !MoveFileExW(temporary.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        code = GetLastError();
    if (code != ERROR_SUCCESS) DeleteFileW(temporary.c_str());
    return code;
}

}  // namespace

std::wstring absolute_path(const std::wstring& path) {
    if (path.empty()) throw error_t(L"The path of a file is empty");
    std::wstring full(path.size() + MAX_PATH, L'\0');
    for (;;) {
        const DWORD size = GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
        const DWORD code = GetLastError();
        if (size == 0) throw_system_error(code, L"The path [" + path + L"] cannot be used");
        const bool fits = size < full.size();
        full.resize(size);
        if (fits) return full;
    }
}

std::wstring folder_of(const std::wstring& path) { return path.substr(0, path.find_last_of(L'\\')); }

std::wstring library_folder() {
    std::wstring path(32768, L'\0');  // the longest path there is
    path.resize(GetModuleFileNameW(this_library(), path.data(), static_cast<DWORD>(path.size())));
    return folder_of(path);
}

bool exports(const std::string& function) { return GetProcAddress(this_library(), function.c_str()) != nullptr; }

std::wstring environment_text(const wchar_t* name) {
    const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
    std::wstring value(size, L'\0');
    value.resize(GetEnvironmentVariableW(name, value.data(), size));
    return value;
}

void close_handle_t::operator()(void* handle) const noexcept { CloseHandle(handle); }

bool exists(const std::wstring& path) {
    if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) return true;
    const DWORD code = GetLastError();
    if (!means_missing(code)) throw_system_error(code, L"Cannot access " + path);
    return false;
}

std::optional<std::string> read_file(const std::wstring& path) {
    const handle_t file = open_file(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, OPEN_EXISTING);
    DWORD code = file ? ERROR_SUCCESS : GetLastError();
    if (means_missing(code)) return std::nullopt;
    LARGE_INTEGER size{};
    if (file && !GetFileSizeEx(file.get(), &size)) code = GetLastError();
    std::string content(static_cast<std::size_t>(size.QuadPart), '\0');
    DWORD received = 0;
    if (code == ERROR_SUCCESS &&
        !ReadFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &received, nullptr))
        code = GetLastError();
    if (code == ERROR_SUCCESS && received != content.size()) code = ERROR_HANDLE_EOF;
    if (code != ERROR_SUCCESS) throw_system_error(code, L"Cannot read the file " + path);
    return content;
}

void write_file(const std::wstring& path, std::string_view content, readers_t readers) {
    administrators_only_t security;
    DWORD code = try_create_folders(folder_of(path));
    if (code == ERROR_SUCCESS)
        code = replace(path, content, readers == readers_t::administrators ? security.get() : nullptr);
    if (code != ERROR_SUCCESS) throw_system_error(code, L"Cannot write the file " + path);
}

void remove_file(const std::wstring& path) {
    if (DeleteFileW(path.c_str())) return;
    const DWORD code = GetLastError();
    if (!means_missing(code)) throw_system_error(code, L"Cannot remove the file " + path);
}

void remove_temporary_files(const std::wstring& path) {
    const std::wstring folder = folder_of(path) + L"\\", file = path.substr(folder.size());
    WIN32_FIND_DATAW entry;
    const HANDLE search = FindFirstFileW((path + L".*.tmp").c_str(), &entry);
    const DWORD code = GetLastError();
    if (search == INVALID_HANDLE_VALUE && means_missing(code)) return;
    if (search == INVALID_HANDLE_VALUE) throw_system_error(code, L"Cannot read the folder " + folder);
    const std::unique_ptr<void, decltype(&FindClose)> closing(search, &FindClose);
    do {
        if (is_temporary_name(entry.cFileName, file)) remove_file(folder + entry.cFileName);
    } while (FindNextFileW(search, &entry));
}

void create_folders(const std::wstring& folder) {
    const DWORD code = try_create_folders(folder);
    if (code != ERROR_SUCCESS) throw_system_error(code, L"Cannot create the folder " + folder);
}

handle_t lock_file(const std::wstring& path, lock_end_t end) {
    // A link in the file's place is opened itself: following it would create or remove a file elsewhere.
    const DWORD flags = FILE_FLAG_OPEN_REPARSE_POINT | (end == lock_end_t::remove_file ? FILE_FLAG_DELETE_ON_CLOSE : 0);
    administrators_only_t security;  // others could keep the file open for ever
    for (const ULONGLONG start = GetTickCount64();; Sleep(1)) {
        handle_t file = open_file(path, GENERIC_READ, 0, OPEN_ALWAYS, security.get(), flags);
        if (file) return file;
        const DWORD code = GetLastError();
        if (code != ERROR_SHARING_VIOLATION) throw_system_error(code, L"Cannot lock the file " + path);
        if (GetTickCount64() - start > lock_timeout)
            throw_system_error(code, L"Another program has kept the file " + path + L" locked for five seconds");
    }
}

}  // namespace demo_library
