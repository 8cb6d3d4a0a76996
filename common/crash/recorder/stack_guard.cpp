#include "common/crash/recorder/stack_guard.h"

#include <cstdint>

#include "common/win32.h"

// The names are the compiler's.
extern "C" {
extern std::uintptr_t __stack_chk_guard;
std::uintptr_t __stack_chk_guard = 0;

[[noreturn]] void __stack_chk_fail() { __builtin_trap(); }
}

namespace recorder {

// Not guarded itself: the value changes meanwhile. What goes in differs from run to run; the counter and where the
// system has put the stack do most.
[[gnu::no_stack_protector]] void choose_stack_guard() {
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    const auto place = reinterpret_cast<std::uintptr_t>(&counter);
    const auto ids = static_cast<std::uintptr_t>(GetCurrentProcessId()) << 32 | GetCurrentThreadId();
    __stack_chk_guard = static_cast<std::uintptr_t>(counter.QuadPart) * 0x9e3779b97f4a7c15 ^ place << 16 ^ ids;
}

}  // namespace recorder
