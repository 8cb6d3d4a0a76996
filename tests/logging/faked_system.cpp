#include "tests/logging/faked_system.h"

#include <cerrno>
#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/hook.h"

#include <aclapi.h>
#include <shlobj.h>

HOOK(kernel32, CreateFileW)
HOOK(kernel32, GetFileInformationByHandleEx)
HOOK(kernel32, GetSystemTimeAsFileTime)
HOOK(kernel32, GetTickCount64)
HOOK(kernel32, WriteFile)
HOOK(advapi32, GetSecurityInfo)
HOOK(shell32, SHGetFolderPathW)

using log_test::faked_system;

namespace {

std::wstring name_of(HANDLE opened) {
    wchar_t path[1000] = L"";
    GetFinalPathNameByHandleW(opened, path, std::size(path), 0);
    return std::filesystem::path(path).filename().wstring();
}

struct hooks_t : testing::Environment {
    void SetUp() override {
        CreateFileW_hook::replacement = [](std::wstring path, auto access, auto sharing, auto security, auto creation,
                                           DWORD flags, auto pattern) {
            if (faked_system.opening) faked_system.opening(path, flags);
            return CreateFileW_hook::System(path.c_str(), access, sharing, security, creation, flags, pattern);
        };
        WriteFile_hook::replacement = [](HANDLE file, auto... rest) {
            const DWORD code = faked_system.write_error ? faked_system.write_error(name_of(file)) : ERROR_SUCCESS;
            if (code == ERROR_SUCCESS) return WriteFile_hook::System(file, rest...);
            SetLastError(code);
            return FALSE;
        };
        GetFileInformationByHandleEx_hook::replacement = [](HANDLE file, auto kind, void* info, auto size) {
            const BOOL done = GetFileInformationByHandleEx_hook::System(file, kind, info, size);
            const DWORD tag = faked_system.reparse_tag ? faked_system.reparse_tag(name_of(file)) : 0;
            if (kind == FileAttributeTagInfo && tag != 0) {
                *static_cast<FILE_ATTRIBUTE_TAG_INFO*>(info) = {FILE_ATTRIBUTE_NORMAL | FILE_ATTRIBUTE_REPARSE_POINT,
                                                                tag};
            }
            return done;
        };
        GetSecurityInfo_hook::replacement = [](HANDLE object, auto type, auto wanted, PSID* owner, auto... rest) {
            static char account[SECURITY_MAX_SID_SIZE];
            const DWORD code = GetSecurityInfo_hook::System(object, type, wanted, owner, rest...);
            const bool foreign = faked_system.is_foreign && faked_system.is_foreign(name_of(object));
            if (foreign || *owner == nullptr) {  // Wine knows no owner of a section
                DWORD size = sizeof account;
                CreateWellKnownSid(foreign ? WinBuiltinGuestsSid : WinLocalSystemSid, nullptr, account, &size);
                *owner = account;
            }
            return code;
        };
        SHGetFolderPathW_hook::replacement = [](auto... args) {
            return faked_system.folder_error ? *faked_system.folder_error : SHGetFolderPathW_hook::System(args...);
        };
        GetTickCount64_hook::replacement = [] {
            return faked_system.tick ? *faked_system.tick : GetTickCount64_hook::System();
        };
        GetSystemTimeAsFileTime_hook::replacement = [](FILETIME* time) {
            GetSystemTimeAsFileTime_hook::System(time);
            if (!faked_system.time) return;
            *time = {static_cast<DWORD>(*faked_system.time), static_cast<DWORD>(*faked_system.time >> 32)};
        };
    }
};

const testing::Environment* const hooks = testing::AddGlobalTestEnvironment(new hooks_t);

}  // namespace

// The name under which the linker looks for the function that zlib writes with.
extern "C" {
int __real_write(int file, const void* data, unsigned size);
int __wrap_write(int file, const void* data, unsigned size) {
    if (!faked_system.disk_is_full) return __real_write(file, data, size);
    errno = ENOSPC;
    return -1;
}
}
