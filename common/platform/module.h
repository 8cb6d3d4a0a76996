// Where this code was loaded from.
#pragma once

#include <optional>
#include <string>

#include "common/win32.h"

namespace platform {

// Returns the full path of a loaded module; null means this process's program file. Throws exc::win_sys_exc_t "Cannot
// get module path.".
std::wstring module_path(HMODULE module);
inline std::wstring program_path() { return module_path(nullptr); }

struct module_path_t {
    std::wstring path;
    bool is_library;  // this code runs inside a loaded library, not in the program file
};

// Returns the full path of the module that contains this code. Throws like module_path().
module_path_t current_module_path();

// Returns the stored target of a symbolic link, or nothing if the path is not a symbolic link.
std::optional<std::wstring> symlink_target(const std::wstring& path);

// Returns the full path of a link's target. A relative target starts at the link's folder.
std::wstring resolve_link(const std::wstring& link, const std::wstring& target);

}  // namespace platform
