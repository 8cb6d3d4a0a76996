#include "common/crash/recorder/ntdll.h"

namespace recorder {
namespace {

template <class Function>
bool find(HMODULE module, const char* name, Function& function) {
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    return function != nullptr;
}

}  // namespace

crash::recorder_exit_t find_ntdll(HMODULE ntdll, ntdll_t& functions) {
    if (ntdll == nullptr) return crash::recorder_no_ntdll;
    if (!find(ntdll, "memset", functions.memset)) return crash::recorder_no_memset;
    if (!find(ntdll, "_vsnwprintf", functions.vsnwprintf)) return crash::recorder_no_vsnwprintf;
    return crash::recorder_success;
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
