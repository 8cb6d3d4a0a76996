#include "common/crash/install.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <exception>

#include <cxxabi.h>

#include "common/crash/crash_entry.h"
#include "common/crash/die.h"
#include "common/crash/watchdog.h"
#include "common/logging/log_exception.h"
#include "common/logging/log_settings.h"
#include "common/platform/guarded_call.h"
#include "common/platform/path.h"

namespace crash {
namespace {

// Codes of failures that the C++ runtime reports and for which Windows has none.
constexpr std::uint32_t terminate_code = 0xE0000001;          // std::terminate: an exception that nobody caught
constexpr std::uint32_t abort_code = 0x40000015;              // STATUS_FATAL_APP_EXIT
constexpr std::uint32_t heap_corruption_code = 0xC0000374;    // STATUS_HEAP_CORRUPTION
constexpr std::uint32_t invalid_parameter_code = 0xC0000417;  // STATUS_INVALID_CRUNTIME_PARAMETER

// What the main thread keeps for the handling of its own stack overflow.
constexpr ULONG main_stack_guarantee = 131'072;

// What every other thread keeps for the search for a handler and for on_unhandled_exception().
constexpr ULONG stack_guarantee = 16'384;

// The compiler refers to this function weakly: a static program has it only when something asks for it, and without
// it a call of a pure virtual function jumps to address 0, not to std::terminate.
[[gnu::used]] void (*const pure_call_function)() = &abi::__cxa_pure_virtual;

// This compiler's C++ exceptions travel as system exceptions: thrown, unwound, unwound by force.
bool is_cpp_exception(const EXCEPTION_RECORD& record) {
    constexpr DWORD gcc_mask = 0x20ffffff;
    constexpr DWORD gcc_code = 0x20474343;
    return (record.ExceptionCode & gcc_mask) == gcc_code && (record.ExceptionFlags & EXCEPTION_NONCONTINUABLE) == 0;
}

LONG WINAPI on_unhandled_exception(EXCEPTION_POINTERS* pointers) {
    // Continuing makes the runtime see that nobody catches this one; it calls std::terminate.
    if (is_cpp_exception(*pointers->ExceptionRecord)) return EXCEPTION_CONTINUE_EXECUTION;
    die(pointers);
}

// Whether the exception must be taken here, before any handler of the program sees it. Everything else reaches
// on_unhandled_exception() when nobody handles it.
bool ends_here(DWORD code) {
    if (code == heap_corruption_code) return true;
    // A stage of the handling has crashed. Windows does not call the unhandled-exception filter for a fault within the
    // filter. System errors only: other languages throw their exceptions as application errors (0xE...).
    const bool is_system_error = (code & 0xF0000000) == 0xC0000000;
    return is_system_error && is_handling_crash() && !platform::is_in_guarded_call();
}

LONG WINAPI on_exception(EXCEPTION_POINTERS* pointers) {
    if (ends_here(pointers->ExceptionRecord->ExceptionCode)) die(pointers);
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

void on_abort(int) {
    start_watchdog(abort_code);
    // The runtime has removed this handler; another thread, or a crash handler, may call abort as well.
    std::signal(SIGABRT, &on_abort);
    die_with(abort_code);
}

void keep_stack(ULONG guarantee) { SetThreadStackGuarantee(&guarantee); }

// Also for threads that libraries start. A library that recovers from stack overflows can still do so.
void NTAPI on_thread_start(void*, DWORD reason, void*) {
    if (reason == DLL_THREAD_ATTACH) keep_stack(stack_guarantee);
}

// The system calls what the linker collects in these sections.
[[gnu::used, gnu::section(".CRT$XLF")]] const PIMAGE_TLS_CALLBACK thread_callback = &on_thread_start;

void install_hooks() noexcept {
    SetErrorMode(GetErrorMode() | SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    keep_stack(main_stack_guarantee);
    SetUnhandledExceptionFilter(&on_unhandled_exception);
    AddVectoredExceptionHandler(1, &on_exception);
    std::set_terminate([] { die_with(terminate_code); });
    std::signal(SIGABRT, &on_abort);
    _set_invalid_parameter_handler([](const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) {
        die_with(invalid_parameter_code);
    });
}

}  // namespace

void install(const logging::component_t& component, const std::wstring& log_folder, const wchar_t* base_name) noexcept {
    static std::atomic_flag installed;
    if (installed.test_and_set()) return;
    set_names(component, base_name);
    prepare_watchdog();
    prepare_spare_thread();
    install_hooks();
    try {
        set_dump_folder(platform::join_path(logging::log_folder_path(log_folder), L"Dumps"));
    } catch (const std::exception& failure) {
        logging::log_exception(component, failure);
    }
}

}  // namespace crash
