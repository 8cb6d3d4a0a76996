// Loaded modules: where they are, and their functions.
#pragma once

#include <string>

#include "common/win32.h"

namespace platform {

// Returns the full path of a loaded module; null means this process's program file. Throws exc::win_sys_exc_t.
std::wstring module_path(HMODULE module);
inline std::wstring program_path() { return module_path(nullptr); }

// Returns the exported function, or null if there is no such function, or no library.
template <class Function>
Function find_function(HMODULE library, const char* name) {
    if (library == nullptr) return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

}  // namespace platform
