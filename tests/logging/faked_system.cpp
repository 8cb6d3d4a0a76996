#include "tests/logging/faked_system.h"

#include <cerrno>
#include <filesystem>

#include <gtest/gtest.h>

#include <aclapi.h>
#include <shlobj.h>

using log_test::faked_system;

namespace {

template <class Function>
Function real(const wchar_t* module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(module), name)));
}

std::wstring name_of(HANDLE opened) {
    wchar_t path[1000] = L"";
    GetFinalPathNameByHandleW(opened, path, std::size(path), 0);
    return std::filesystem::path(path).filename().wstring();
}

HANDLE WINAPI create_file(LPCWSTR path, DWORD access, DWORD sharing, LPSECURITY_ATTRIBUTES security, DWORD creation,
                          DWORD flags, HANDLE pattern) {
    static const auto create = real<decltype(&create_file)>(L"kernel32.dll", "CreateFileW");
    std::wstring changed = path;
    if (faked_system.opening) faked_system.opening(changed, flags);
    return create(changed.c_str(), access, sharing, security, creation, flags, pattern);
}

BOOL WINAPI write_file(HANDLE file, LPCVOID data, DWORD size, LPDWORD written, LPOVERLAPPED overlapped) {
    static const auto write = real<decltype(&write_file)>(L"kernel32.dll", "WriteFile");
    const DWORD code = faked_system.write_error ? faked_system.write_error(name_of(file)) : ERROR_SUCCESS;
    if (code == ERROR_SUCCESS) return write(file, data, size, written, overlapped);
    SetLastError(code);
    return FALSE;
}

BOOL WINAPI get_information(HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, LPVOID info, DWORD size) {
    static const auto get = real<decltype(&get_information)>(L"kernel32.dll", "GetFileInformationByHandleEx");
    const BOOL done = get(file, kind, info, size);
    const DWORD tag = faked_system.reparse_tag ? faked_system.reparse_tag(name_of(file)) : 0;
    if (kind == FileAttributeTagInfo && tag != 0) {
        *static_cast<FILE_ATTRIBUTE_TAG_INFO*>(info) = {FILE_ATTRIBUTE_NORMAL | FILE_ATTRIBUTE_REPARSE_POINT, tag};
    }
    return done;
}

DWORD WINAPI get_security(HANDLE object, SE_OBJECT_TYPE type, SECURITY_INFORMATION wanted, PSID* owner, PSID* group,
                          PACL* access, PACL* audit, PSECURITY_DESCRIPTOR* descriptor) {
    static const auto get = real<decltype(&get_security)>(L"advapi32.dll", "GetSecurityInfo");
    static char account[SECURITY_MAX_SID_SIZE];
    const DWORD code = get(object, type, wanted, owner, group, access, audit, descriptor);
    const bool foreign = faked_system.is_foreign && faked_system.is_foreign(name_of(object));
    if (foreign || *owner == nullptr) {  // Wine knows no owner of a section
        DWORD size = sizeof account;
        CreateWellKnownSid(foreign ? WinBuiltinGuestsSid : WinLocalSystemSid, nullptr, account, &size);
        *owner = account;
    }
    return code;
}

HRESULT WINAPI get_folder(HWND window, int folder, HANDLE token, DWORD flags, LPWSTR path) {
    static const auto get = real<decltype(&get_folder)>(L"shell32.dll", "SHGetFolderPathW");
    return faked_system.folder_error ? *faked_system.folder_error : get(window, folder, token, flags, path);
}

ULONGLONG WINAPI get_tick() {
    static const auto get = real<decltype(&get_tick)>(L"kernel32.dll", "GetTickCount64");
    return faked_system.tick ? *faked_system.tick : get();
}

void WINAPI get_time(LPFILETIME time) {
    static const auto get = real<decltype(&get_time)>(L"kernel32.dll", "GetSystemTimeAsFileTime");
    get(time);
    if (faked_system.time)
        *time = {static_cast<DWORD>(*faked_system.time), static_cast<DWORD>(*faked_system.time >> 32)};
}

}  // namespace

// The names under which the linker looks for imported functions, and for the one that zlib writes with.
extern "C" {
decltype(&create_file) __imp_CreateFileW = &create_file;
decltype(&write_file) __imp_WriteFile = &write_file;
decltype(&get_information) __imp_GetFileInformationByHandleEx = &get_information;
decltype(&get_security) __imp_GetSecurityInfo = &get_security;
decltype(&get_folder) __imp_SHGetFolderPathW = &get_folder;
decltype(&get_tick) __imp_GetTickCount64 = &get_tick;
decltype(&get_time) __imp_GetSystemTimeAsFileTime = &get_time;

int __real_write(int file, const void* data, unsigned size);
int __wrap_write(int file, const void* data, unsigned size) {
    if (!faked_system.disk_is_full) return __real_write(file, data, size);
    errno = ENOSPC;
    return -1;
}
}
