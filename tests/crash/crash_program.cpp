// crash_program WAY FOLDER: dies in this way with its log and its dumps in FOLDER\logs.
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <thread>

#include <boost/make_shared.hpp>

#include "common/crash/crash_entry.h"
#include "common/crash/handler_registry.h"
#include "common/crash/install.h"
#include "common/crash/watchdog.h"
#include "common/logging/log_settings.h"
#include "common/logging/open_log.h"
#include "common/logging/logger.h"
#include "common/text/convert.h"
#include "tests/support/test_registry.h"

#include <tlhelp32.h>

// A way to die. It is found by its name, which is what a backtrace must show.
#define WAY extern "C" __declspec(dllexport) void
using way_to_die_t = void (*)();

void write_through_null() {
    volatile int* const target = nullptr;
    *target = 1;
}

template <int frame_size>
void recurse(volatile char* above) {
    volatile char frame[frame_size];
    frame[0] = above[0];
    if (frame[0] == 0) recurse<frame_size>(frame);  // always, but the compiler must not know
    above[1] = frame[1];
}
volatile char zeros[2];

struct base_t {
    base_t() { call(); }
    void call() { pure(); }
    virtual void pure() = 0;
};
struct derived_t : base_t {
    void pure() override {}
};

struct faulting_sink_t : logging::receiver::sink_t {
    void write_line(const logging::line_t&) override { write_through_null(); }
};

const HANDLE blocked = CreateEventW(nullptr, TRUE, FALSE, nullptr);
struct blocking_sink_t : logging::receiver::sink_t {
    void write_line(const logging::line_t&) override {
        SetEvent(blocked);
        Sleep(INFINITE);
    }
};

// The records of a crash have the id of the thread that crashed, as this one has.
template <class Way>
void die_in_thread(Way way) {
    std::thread([way] {
        logging::ormacon_tool.info("This thread crashes.");
        way();
    }).join();
}

// What catches everything that C++ throws must not stop a fault.
WAY access_violation() try { write_through_null(); } catch (...) {
}
WAY stack_overflow() { recurse<64>(zeros); }
// The fault comes in the midst of the last page: too little is left for the system to report it.
WAY stack_overflow_unreported() { recurse<2048>(zeros); }
WAY uncaught_int() { throw 42; }
WAY pure_virtual_call() { derived_t(); }
WAY call_abort() { std::abort(); }
// As the system reports it, and past the unhandled-exception filter.
WAY heap_corruption() {
    SetUnhandledExceptionFilter(nullptr);
    RaiseException(0xC0000374, EXCEPTION_NONCONTINUABLE, 0, nullptr);
}
WAY invalid_parameter() { _get_invalid_parameter_handler()(nullptr, nullptr, nullptr, 0, 0); }
WAY library_load() { LoadLibraryW(L"crash_library.dll"); }
WAY second_thread() { die_in_thread(write_through_null); }
WAY stack_overflow_second_thread() {
    die_in_thread([] { recurse<64>(zeros); });
}
WAY faulting_sink() {
    die_in_thread([] {
        logging::process_logger().attach(boost::make_shared<faulting_sink_t>());
        logging::ormacon_tool.info("reaches the sinks before that one");
    });
}
WAY log_lock_held() {
    std::thread([] {
        logging::process_logger().attach(boost::make_shared<blocking_sink_t>());
        logging::ormacon_tool.info("reaches the sinks before that one");
    }).detach();
    WaitForSingleObject(blocked, INFINITE);
    write_through_null();
}
WAY heap_lock_held() {
    HeapLock(GetProcessHeap());
    write_through_null();
}
WAY crash_while_exiting() {
    std::atexit(write_through_null);
    std::exit(0);
}
WAY faulting_handler() {
    crash::register_handler(write_through_null);
    write_through_null();
}
WAY aborting_handler() {
    crash::register_handler(std::abort);
    std::abort();
}
WAY no_dump_folder() {
    crash::set_dump_folder(L"");
    std::abort();
}
// Where the unwinder looks for the caller of this function there is no memory.
WAY damaged_frame() { asm("sub $32, %rsp\n\tmov $8, %rbp\n\tcall abort"); }

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
WAY password_in_use() { use_password(write_through_null); }
WAY password_and_abort() { use_password(call_abort); }

void stop_other_threads(HANDLE snapshot) {
    THREADENTRY32 thread{};
    thread.dwSize = sizeof thread;
    for (BOOL found = Thread32First(snapshot, &thread); found; found = Thread32Next(snapshot, &thread)) {
        const DWORD id = thread.th32ThreadID;
        if (thread.th32OwnerProcessID != GetCurrentProcessId()) continue;
        if (id == GetCurrentThreadId() || id == crash::watching_thread()) continue;
        SuspendThread(OpenThread(THREAD_SUSPEND_RESUME, FALSE, id));
    }
}
void kill_child(HANDLE snapshot) {
    PROCESSENTRY32W process{};
    process.dwSize = sizeof process;
    for (BOOL found = Process32FirstW(snapshot, &process); found; found = Process32NextW(snapshot, &process)) {
        if (process.th32ParentProcessID != GetCurrentProcessId()) continue;
        TerminateProcess(OpenProcess(PROCESS_TERMINATE, FALSE, process.th32ProcessID), 9);
    }
}
void kill_recorder(const std::wstring& dump) {
    WIN32_FIND_DATAW entry;
    while (FindFirstFileW(dump.c_str(), &entry) == INVALID_HANDLE_VALUE) Sleep(1);
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS | TH32CS_SNAPTHREAD, 0);
    stop_other_threads(snapshot);
    kill_child(snapshot);
}
// As a virus scanner may do it, at the worst time: the dump is begun, and its writer has stopped this process.
WAY recorder_killed() {
    std::thread(kill_recorder, logging::log_folder_path(L"logs") + L"\\Dumps\\*.mdmp").detach();
    write_through_null();
}

int main(int argc, char** argv) {
    if (argc != 3) return 0;
    test_support::CTestRegistry registry;
    registry.SetText(L"SOFTWARE\\Tovak\\Tovak Central", L"LogDirectory", text::utf8_to_wide(argv[2]));
    crash::install(L"logs");
    logging::initialise(logging::ormacon_tool, L"logs", L"Ormacon.log");
    reinterpret_cast<way_to_die_t>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(nullptr), argv[1])))();
    return 0;
}
