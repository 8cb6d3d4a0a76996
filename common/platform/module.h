// Where this code was loaded from.
#pragma once

#include <optional>
#include <string>

#include "common/win32.h"

namespace platform {

// The full path of a loaded module; null is the program file of this process. Throws exc::win_sys_exc_t "Cannot get
// module path.".
std::wstring module_path(HMODULE module);
inline std::wstring program_path() { return module_path(nullptr); }

struct module_path_t {
    std::wstring path;
    bool is_library;  // this code runs inside a loaded library, not in the program file
};

// The full path of the module that holds this code. Throws like module_path().
module_path_t current_module_path();

// The target of a symbolic link as it is stored, nothing when the path is no symbolic link.
std::optional<std::wstring> symlink_target(const std::wstring& path);

// The full path of a link's target; a relative one counts from the folder of the link.
std::wstring resolve_link(const std::wstring& link, const std::wstring& target);

}  // namespace platform
