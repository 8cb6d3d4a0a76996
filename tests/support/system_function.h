#pragma once

#include "common/win32.h"

namespace test_support {

// The system's own function, for a test program that defines the linker's name of its import, to do something else.
template <class Function>
Function* SystemFunction(const char* name) {
    const auto address = reinterpret_cast<void (*)()>(GetProcAddress(LoadLibraryW(L"kernel32.dll"), name));
    return reinterpret_cast<Function*>(address);
}

}  // namespace test_support
