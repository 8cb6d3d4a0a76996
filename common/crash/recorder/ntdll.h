// What the recorder borrows from NTDLL in place of a C runtime: fixed from outside, with the exit statuses.
#pragma once

#include <cstdarg>
#include <cstddef>

#include "common/crash/shared/exit_codes.h"
#include "common/win32.h"

namespace recorder {

struct ntdll_t {
    void* (*memset)(void* target, int value, std::size_t size);
    int (*vsnwprintf)(wchar_t* target, std::size_t size, const wchar_t* format, va_list arguments);
};

// Takes them from the loaded NTDLL, null without one. Returns recorder_no_ntdll, recorder_no_memset,
// recorder_no_vsnwprintf or recorder_success.
crash::recorder_exit_t find_ntdll(HMODULE ntdll, ntdll_t& functions);

// Returns false when the text and its terminating null do not fit into the target, whose size counts characters.
bool print(const ntdll_t& functions, wchar_t* target, std::size_t size, const wchar_t* format, ...);

}  // namespace recorder
