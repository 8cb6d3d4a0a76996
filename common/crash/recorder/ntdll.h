// What the recorder borrows from NTDLL in place of a C runtime.
#pragma once

#include <cstdarg>
#include <cstddef>

#include "common/crash/recorder/exit_codes.h"
#include "common/win32.h"

namespace recorder {

struct ntdll_t {
    void* (*memset)(void* target, int value, std::size_t size);
    int (*vsnwprintf)(wchar_t* target, std::size_t size, const wchar_t* format, va_list arguments);
};

// From the loaded NTDLL, null without one. Gives recorder_no_ntdll, recorder_no_memset or recorder_no_vsnwprintf.
crash::recorder_exit_t find_ntdll(HMODULE ntdll, ntdll_t& functions);

// False when the text does not fit with its terminating null.
bool print(const ntdll_t& functions, wchar_t* target, std::size_t size, const wchar_t* format, ...);

}  // namespace recorder
