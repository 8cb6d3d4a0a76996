// crash_program WAY FOLDER: dies in this way with its log and its dumps in FOLDER\logs.
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iostream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include <boost/make_shared.hpp>

#include "common/crash/crash_entry.h"
#include "common/crash/handler_registry.h"
#include "common/crash/install.h"
#include "common/encoding/convert.h"
#include "common/logging/log_settings.h"
#include "common/logging/logger.h"
#include "common/logging/open_log.h"
#include "common/platform/module.h"
#include "tests/support/hook.h"
#include "tests/support/recording_sink.h"
#include "tests/support/test_registry.h"

#include <tlhelp32.h>

using test_support::test_log;

// What the handling calls.
HOOK(kernel32, CreateThread)
HOOK(kernel32, FindFirstFileW)
HOOK(kernel32, GetStdHandle)
HOOK(kernel32, GetTickCount64)
HOOK(kernel32, LoadLibraryExW)
#ifdef ORMACON_COVERAGE
HOOK(kernel32, TerminateProcess)
extern "C" void __gcov_dump();
#endif

// A way to die. It is found by its name, which is what a backtrace must show.
#define WAY extern "C" __declspec(dllexport) void
using way_to_die_t = void (*)();

void write_through_null() {
    volatile int* const target = nullptr;
    *target = 1;
}

void recurse(volatile char* above) {
    volatile char frame[64];
    frame[0] = above[0];
    if (frame[0] == 0) recurse(frame);  // always, but the compiler must not know
    above[1] = frame[1];
}
volatile char zeros[2];

// Windows moves the guard page down as the stack grows and stops above what the thread keeps for an overflow. Wine
// moves it in the same way, but starts with it at the stack's end, where its version 10 leaves a handler 450 bytes.
void overflow_stack() {
    ULONG_PTR lowest = 0;
    ULONG_PTR highest = 0;
    GetCurrentThreadStackLimits(&lowest, &highest);
    DWORD before = 0;
    VirtualProtect(reinterpret_cast<void*>((lowest + highest) / 2), 1, PAGE_READWRITE | PAGE_GUARD, &before);
    recurse(zeros);
}

struct base_t {
    base_t() { call(); }
    void call() { pure(); }
    virtual void pure() = 0;
};
struct derived_t : base_t {
    void pure() override {}
};

const HANDLE happened = CreateEventW(nullptr, TRUE, FALSE, nullptr);
void attach_sink(std::function<void(const logging::line_t&)> action) {
    logging::process_logger().attach(boost::make_shared<test_support::recording_sink_t>(action));
}

// The records of a crash have the id of the thread that crashed, as this one has.
void run_on_second_thread(void (*crash)()) {
    std::thread([crash] {
        test_log.info("This thread crashes.");
        crash();
    }).join();
}

WAY stack_overflow() { overflow_stack(); }
WAY uncaught_int() { throw 42; }
WAY pure_virtual_call() { derived_t(); }
// As the system reports it, and past the unhandled-exception filter.
WAY heap_corruption() {
    SetUnhandledExceptionFilter(nullptr);
    RaiseException(0xC0000374, EXCEPTION_NONCONTINUABLE, 0, nullptr);
}
// Another thread has the log's lock.
WAY log_lock_held() {
    std::thread([] {
        attach_sink([](auto&&) {
            SetEvent(happened);
            Sleep(INFINITE);
        });
        test_log.info("reaches the sinks before that one");
    }).detach();
    WaitForSingleObject(happened, INFINITE);
    std::thread(write_through_null).join();
}
WAY crash_while_exiting() {
    std::atexit(write_through_null);
    std::exit(0);
}
extern "C" void ormacon_guarded_frame(void (*function)(), void* argument);
void fault_in_handling();
// Stands for the debug-help library's writer, where this program does for that: it survives a fault, not the next one.
WAY MiniDumpWriteDump() {
    ormacon_guarded_frame(write_through_null, nullptr);
    test_log.info("The library goes on.");
    fault_in_handling();
}

// Windows ends a process at once if its filter faults.
void fault_in_handling() {
    SetUnhandledExceptionFilter([](EXCEPTION_POINTERS*) -> LONG { std::_Exit(9); });
    write_through_null();
}
void plant_faults() {
    crash::register_handler(fault_in_handling);
    for (const auto* place : {"Trying to", "handler has failed", "Generating dump", "Writing legacy dump"}) {
        attach_sink([place](const logging::line_t& line) {
            if (line.record.text.find(place) != std::string_view::npos) fault_in_handling();
        });
    }
    FindFirstFileW_hook::replacement = [](auto... args) {
        static bool again = false;
        if (!std::exchange(again, true)) fault_in_handling();
        return FindFirstFileW_hook::System(args...);
    };
    GetStdHandle_hook::replacement = [](auto) -> HANDLE {
        fault_in_handling();
        return nullptr;
    };
    LoadLibraryExW_hook::replacement = [](auto...) { return GetModuleHandleW(nullptr); };
}
WAY faults_in_filter() {
    plant_faults();
    write_through_null();
}
WAY faults_in_vectored_handler() {
    plant_faults();
    heap_corruption();
}
WAY hanging_handler() {
    GetTickCount64_hook::replacement = [] { return GetTickCount64_hook::System() * 100; };
    crash::register_handler([] { Sleep(INFINITE); });
    write_through_null();
}
// Last of all that see an exception before the filter.
LONG WINAPI notice_exception(EXCEPTION_POINTERS*) {
    SetEvent(happened);
    return EXCEPTION_CONTINUE_SEARCH;
}
WAY two_at_once() {
    crash::register_handler([] {
        ResetEvent(happened);
        std::thread([] { RaiseException(EXCEPTION_INT_DIVIDE_BY_ZERO, 0, 0, nullptr); }).detach();
        WaitForSingleObject(happened, INFINITE);
    });
    AddVectoredExceptionHandler(0, notice_exception);
    write_through_null();
}
WAY loader_lock_held() {
    run_on_second_thread([] {
        using lock_t = LONG(NTAPI*)(ULONG, ULONG*, ULONG_PTR*);
        const auto lock = platform::find_function<lock_t>(GetModuleHandleW(L"ntdll.dll"), "LdrLockLoaderLock");
        ULONG_PTR cookie = 0;
        lock(0, nullptr, &cookie);
        overflow_stack();
    });
}
// A thread of a library that recovers from the overflow of its stack.
CONTEXT before_overflow;
LONG WINAPI recover(EXCEPTION_POINTERS* pointers) {
    if (pointers->ExceptionRecord->ExceptionCode != EXCEPTION_STACK_OVERFLOW) return EXCEPTION_CONTINUE_SEARCH;
    SetEvent(happened);
    *pointers->ContextRecord = before_overflow;
    return EXCEPTION_CONTINUE_EXECUTION;
}
WAY stack_overflow_recovered() {
    AddVectoredExceptionHandler(0, recover);
    run_on_second_thread([] {
        RtlCaptureContext(&before_overflow);
        if (WaitForSingleObject(happened, 0) == WAIT_TIMEOUT) overflow_stack();
    });
}
// What was freed is changed, and the heap relies on it. Windows reports that, Wine faults.
WAY damaged_heap() {
    const HANDLE heap = HeapCreate(0, 0, 0);
    for (int i = 0; i < 2; ++i) {
        void* const block = HeapAlloc(heap, 0, 5000);
        HeapAlloc(heap, 0, 16);
        HeapFree(heap, 0, block);
        std::memset(block, 0x41, 5000);
    }
}
WAY aborting_handler() {
    crash::register_handler(std::abort);
    std::abort();
}
// The crashed thread has the log's lock and no stack left.
WAY overflowing_handler() {
    crash::register_handler(overflow_stack);
    run_on_second_thread(write_through_null);
}
WAY no_dump_folder() {
    crash::set_dump_folder(L"");
    _get_invalid_parameter_handler()(nullptr, nullptr, nullptr, 0, 0);
}

void log_on(const std::string& narrow, const std::wstring& wide, const char* copy, way_to_die_t die) {
    if (narrow.size() == wide.size() && narrow == copy) die();
}
// The password is in use: on the stack, on the heap, and in what a call left behind.
void use_password(way_to_die_t die) {
    std::string password;
    std::getline(std::cin, password);
    char copy[64];
    std::strcpy(copy, password.c_str());
    log_on(password, std::wstring(password.begin(), password.end()), copy, die);
}
// What catches everything that C++ throws must not stop a fault.
WAY password_in_use() try { use_password(write_through_null); } catch (...) {
}
// Where the unwinder looks for the caller of this function there is no memory.
WAY damaged_frame() {
    use_password([] { asm("sub $32, %rsp\n\tmov $8, %rbp\n\tcall abort"); });
}

// As a virus scanner may do it, at the worst time: the dump is begun, and its writer has stopped the crashed thread.
void kill_recorder(const std::wstring& dump, HANDLE crashed_thread) {
    WIN32_FIND_DATAW entry;
    while (FindFirstFileW(dump.c_str(), &entry) == INVALID_HANDLE_VALUE) Sleep(1);
    for (int i = 0; i < 2; ++i) SuspendThread(crashed_thread);
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W process{};
    process.dwSize = sizeof process;
    for (BOOL found = Process32FirstW(snapshot, &process); found; found = Process32NextW(snapshot, &process)) {
        if (process.th32ParentProcessID != GetCurrentProcessId()) continue;
        TerminateProcess(OpenProcess(PROCESS_TERMINATE, FALSE, process.th32ProcessID), 9);
    }
}
WAY recorder_killed() {
    const HANDLE self = OpenThread(THREAD_SUSPEND_RESUME, FALSE, GetCurrentThreadId());
    std::thread(kill_recorder, logging::log_folder_path(L"logs") + L"\\Dumps\\*.mdmp", self).detach();
    use_password(write_through_null);
}

int main(int argc, char** argv) {
    if (argc != 3) return 0;
#ifdef ORMACON_COVERAGE  // A process that is ended does not note by itself what has run.
    TerminateProcess_hook::replacement = [](auto... args) {
        return __gcov_dump(), TerminateProcess_hook::System(args...);
    };
#endif
    // The program's threads begin late, as on a busy machine, and need the loader's lock to do so.
    CreateThread_hook::replacement = [](auto security, auto size, auto* run, auto* with, DWORD flags, auto* id) {
        const HANDLE thread = CreateThread_hook::System(security, size, run, with, flags | CREATE_SUSPENDED, id);
        std::thread([thread] { Sleep(50), ResumeThread(thread); }).detach();
        return thread;
    };
    test_support::CTestRegistry registry;
    registry.SetText(L"SOFTWARE\\Tovak\\Tovak Central", L"LogDirectory", encoding::utf8_to_wide(argv[2]));
    crash::install(test_log, L"logs", L"Ormacon_crash");
    logging::initialise(test_log, L"logs", L"Ormacon.log");
    platform::find_function<way_to_die_t>(GetModuleHandleW(nullptr), argv[1])();
    return 0;
}
