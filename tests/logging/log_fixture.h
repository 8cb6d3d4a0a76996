// A log in a folder of the test's own. What the system answers is changed where no test could bring it about.
#pragma once

#include "tests/logging/log_test_kit.h"
#include "tests/support/hook.h"

HOOK(advapi32, GetKernelObjectSecurity)
HOOK(kernel32, CreateFileW)
HOOK(kernel32, GetFileInformationByHandleEx)
HOOK(kernel32, GetSystemTimeAsFileTime)
HOOK(kernel32, GetTickCount64)
HOOK(kernel32, MapViewOfFile)
HOOK(kernel32, SetFileInformationByHandle)
HOOK(kernel32, SystemTimeToTzSpecificLocalTime)
HOOK(kernel32, WriteFile)

namespace log_test {

inline std::wstring name_of(HANDLE opened) {
    wchar_t path[1000] = L"";
    GetFinalPathNameByHandleW(opened, path, std::size(path), 0);
    return fs::path(path).filename().wstring();
}

// Names of open files and folders; that of a section is empty.
using chosen_t = std::function<bool(const std::wstring& name)>;

inline void fail_to_write(DWORD code, const chosen_t& chosen) {
    WriteFile_hook::replacement = [=](HANDLE file, auto... rest) {
        if (!chosen(name_of(file))) return WriteFile_hook::System(file, rest...);
        SetLastError(code);
        return FALSE;
    };
}

// These belong to the guests.
inline void make_foreign(const chosen_t& chosen) {
    GetKernelObjectSecurity_hook::replacement = [=](HANDLE object, auto wanted, void* read, auto... rest) {
        const BOOL done = GetKernelObjectSecurity_hook::System(object, wanted, read, rest...);
        auto* const descriptor = static_cast<SECURITY_DESCRIPTOR_RELATIVE*>(read);
        const bool foreign = chosen(name_of(object));
        if (foreign || descriptor->Owner == 0) {  // Wine knows no owner of a section
            DWORD size = SECURITY_MAX_SID_SIZE;
            descriptor->Owner = sizeof *descriptor;
            CreateWellKnownSid(foreign ? WinBuiltinGuestsSid : WinLocalSystemSid, nullptr, descriptor + 1, &size);
        }
        return done;
    };
}

template <class... Hooks>
void restore() {
    ((Hooks::replacement = nullptr), ...);
}

class LogTest : public testing::Test {
protected:
    ~LogTest() override {
        restore<GetKernelObjectSecurity_hook, CreateFileW_hook, GetFileInformationByHandleEx_hook,
                GetSystemTimeAsFileTime_hook, GetTickCount64_hook, MapViewOfFile_hook, SetFileInformationByHandle_hook,
                SystemTimeToTzSpecificLocalTime_hook, WriteFile_hook>();
    }

    std::string refusal(const char* name, const char* reason) const {
        return "File [" + (folder / name).string() + "] is not used: " + reason + ".";
    }

    const CTestFolder folder;
    const std::wstring path = (folder / L"A.log").wstring();
    const std::string shown_path = fs::path(path).string();
};

}  // namespace log_test
