#include "common/platform/guarded_call.h"

#include <atomic>

namespace platform {
namespace {

// Only one thread at a time writes a dump.
constinit std::atomic<DWORD> calling_thread{0};
constinit DWORD fault = 0;

}  // namespace

// __try and __except, which this compiler lacks: guarded_frame.S, and the filter expression.
extern "C" {
void ormacon_guarded_frame(void (*function)(void*), void* argument);

LONG ormacon_guard_filter(EXCEPTION_POINTERS* pointers, void*) {
    fault = pointers->ExceptionRecord->ExceptionCode;
    return EXCEPTION_EXECUTE_HANDLER;
}
}

void call_guarded(void (*function)(void*), void* argument) noexcept {
    calling_thread = GetCurrentThreadId();
    fault = 0;
    ormacon_guarded_frame(function, argument);
    calling_thread = 0;
    if (fault != 0) SetLastError(fault);
}

bool is_in_guarded_call() noexcept { return calling_thread == GetCurrentThreadId(); }

void abandon_guarded_call() noexcept { calling_thread = 0; }

}  // namespace platform
