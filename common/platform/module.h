// Where modules were loaded from.
#pragma once

#include <string>

#include "common/win32.h"

namespace platform {

// Returns the full path of a loaded module; null means this process's program file. Throws exc::win_sys_exc_t.
std::wstring module_path(HMODULE module);
inline std::wstring program_path() { return module_path(nullptr); }

}  // namespace platform
