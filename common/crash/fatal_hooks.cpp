#include "common/crash/fatal_hooks.h"

#include <csignal>
#include <cstdlib>
#include <exception>

#include <cxxabi.h>

#include "common/crash/crash_thread.h"
#include "common/crash/failure.h"

namespace crash {
namespace {

// Kept free for the work that follows a stack overflow.
constexpr ULONG stack_guarantee = 65'536;

// The compiler refers to this function weakly: a static program has it only when something asks for it, and without
// it a call of a pure virtual function jumps to address 0.
[[gnu::used]] void (*const pure_call_function)() = &abi::__cxa_pure_virtual;

// This compiler's C++ exceptions travel as system exceptions: thrown, unwound, unwound by force.
bool is_cpp_exception(const EXCEPTION_RECORD& record) {
    constexpr DWORD gcc_mask = 0x20ffffff;
    constexpr DWORD gcc_code = 0x20474343;
    return (record.ExceptionCode & gcc_mask) == gcc_code && (record.ExceptionFlags & EXCEPTION_NONCONTINUABLE) == 0;
}

LONG WINAPI on_unhandled_exception(EXCEPTION_POINTERS* pointers) {
    // Going on tells the runtime that nobody catches this one; it calls std::terminate.
    if (is_cpp_exception(*pointers->ExceptionRecord)) return EXCEPTION_CONTINUE_EXECUTION;
    die(pointers);
}

// Whether what is left of the stack may not do for the search for a handler. The system keeps the guaranteed reserve
// free, where it does.
bool runs_out_of_stack() {
    constexpr ULONG_PTR search_needs = 8192;  // with the last page, which is never given out
    ULONG_PTR lowest = 0;
    ULONG_PTR highest = 0;
    GetCurrentThreadStackLimits(&lowest, &highest);
    return reinterpret_cast<ULONG_PTR>(__builtin_frame_address(0)) - lowest < search_needs;
}

// Comes before all other handlers: only what none of them could handle ends here.
LONG WINAPI on_exception(EXCEPTION_POINTERS* pointers) {
    const DWORD code = pointers->ExceptionRecord->ExceptionCode;
    if (code == heap_corruption_code || (code == EXCEPTION_STACK_OVERFLOW && runs_out_of_stack())) die(pointers);
    return EXCEPTION_CONTINUE_SEARCH;
}

// In place, so that the stack still shows who called.
[[noreturn]] void die_with(std::uint32_t code) noexcept {
    CONTEXT context{};  // not all of it is captured, and all of it goes into the dump
    RtlCaptureContext(&context);
    EXCEPTION_RECORD record{};
    record.ExceptionCode = code;
    record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
    record.ExceptionAddress = reinterpret_cast<void*>(context.Rip);
    EXCEPTION_POINTERS pointers{&record, &context};
    die(&pointers);
}

[[noreturn]] void on_terminate() { die_with(terminate_code); }

void on_abort(int) { die_with(abort_code); }

void on_pure_call() { die_with(pure_call_code); }

void on_invalid_parameter(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) {
    die_with(invalid_parameter_code);
}

}  // namespace

void install_fatal_hooks() noexcept {
    SetErrorMode(GetErrorMode() | SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    ULONG guarantee = stack_guarantee;
    SetThreadStackGuarantee(&guarantee);
    SetUnhandledExceptionFilter(&on_unhandled_exception);
    AddVectoredExceptionHandler(1, &on_exception);
    std::set_terminate(&on_terminate);
    std::signal(SIGABRT, &on_abort);
    _set_purecall_handler(&on_pure_call);
    _set_invalid_parameter_handler(&on_invalid_parameter);
}

}  // namespace crash
