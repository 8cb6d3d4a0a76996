#include "common/crash/recorder/ntdll.h"

#include "common/platform/module.h"

namespace recorder {

crash::recorder_exit_t find_ntdll(HMODULE ntdll, ntdll_t& functions) {
    if (ntdll == nullptr) return crash::recorder_no_ntdll;
    functions.memset = platform::find_function<decltype(functions.memset)>(ntdll, "memset");
    if (functions.memset == nullptr) return crash::recorder_no_memset;
    functions.vsnwprintf = platform::find_function<decltype(functions.vsnwprintf)>(ntdll, "_vsnwprintf");
    return functions.vsnwprintf == nullptr ? crash::recorder_no_vsnwprintf : crash::recorder_success;
}

// NOLINTNEXTLINE(cert-dcl50-cpp): what NTDLL expects
bool print(const ntdll_t& functions, wchar_t* target, std::size_t size, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = functions.vsnwprintf(target, size, format, arguments);
    va_end(arguments);
    return length >= 0 && static_cast<std::size_t>(length) < size;
}

}  // namespace recorder
