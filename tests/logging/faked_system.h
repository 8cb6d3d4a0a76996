// What the system answers, changed by a test where no test could bring it about. A member that is not set changes
// nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "common/win32.h"

namespace log_test {

struct faked_system_t {
    // Gets what CreateFileW is asked for, and may change the path.
    std::function<void(std::wstring& path, DWORD flags)> opening;
    // Each gets the name of an open file or folder.
    std::function<DWORD(const std::wstring& name)> write_error;  // of WriteFile, or 0
    std::function<DWORD(const std::wstring& name)> reparse_tag;  // or 0
    std::function<bool(const std::wstring& name)> is_foreign;    // whether it belongs to the guests; a section: ""
    std::optional<HRESULT> folder_error;                         // of SHGetFolderPathW
    std::optional<std::uint64_t> tick, time;                     // milliseconds; in units of a FILETIME
    bool disk_is_full = false;                                   // for the C runtime
};

inline faked_system_t faked_system;

// Undoes at its end what a test has changed.
struct system_guard_t {
    ~system_guard_t() { faked_system = {}; }
};

}  // namespace log_test
