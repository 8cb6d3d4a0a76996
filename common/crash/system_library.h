// Libraries of the system that are needed in a crash alone.
#pragma once

#include "common/platform/owned.h"

namespace crash {

// From the system's folder alone, whatever lies in the current folder. Empty on failure; the last error tells why.
inline platform::unique_module load_system_library(const wchar_t* name) {
    return platform::unique_module(LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
}

// Null when there is no such export.
template <class Function>
Function find_function(const platform::unique_module& library, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library.get(), name)));
}

}  // namespace crash
