#include "tests/crash/ways_to_die.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <string>
#include <thread>

#include <boost/make_shared.hpp>

#include "common/crash/handler_registry.h"
#include "common/logging/component.h"
#include "common/logging/process_logger.h"
#include "common/logging/sink.h"
#include "common/win32.h"

void write_through_null() {
    volatile int* const target = nullptr;
    *target = 1;
}

// What catches everything that C++ throws must not stop a fault.
void access_violation() try { write_through_null(); } catch (...) {
}

template <int frame_size>
void recurse(volatile char* above) {
    volatile char frame[frame_size];
    frame[0] = above[0];
    if (frame[0] == 0) recurse<frame_size>(frame);  // always, but the compiler must not know
    above[1] = frame[1];
}
void stack_overflow() {
    volatile char begin[2] = {};
    recurse<64>(begin);
}
// The fault comes in the midst of the last page: too little is left for the system to report it.
void stack_overflow_unreported() {
    volatile char begin[2] = {};
    recurse<2048>(begin);
}

void uncaught_int() { throw 42; }

struct throwing_t {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wterminate"
    ~throwing_t() { throw std::string("out of a destructor"); }
#pragma GCC diagnostic pop
};
void throwing_destructor() { const throwing_t object; }

struct base_t {
    base_t() { call(); }
    virtual ~base_t() = default;
    void call() { pure(); }
    virtual void pure() = 0;
};
struct derived_t : base_t {
    void pure() override {}
};
void pure_virtual_call() { derived_t(); }

void call_abort() { std::abort(); }

// As the system reports it, and past the unhandled-exception filter.
void heap_corruption() {
    SetUnhandledExceptionFilter(nullptr);
    RaiseException(0xC0000374, EXCEPTION_NONCONTINUABLE, 0, nullptr);
}

void invalid_parameter() { _get_invalid_parameter_handler()(nullptr, nullptr, nullptr, 0, 0); }

void library_fault() {
    const HMODULE library = LoadLibraryW(L"crash_library.dll");
    const auto function =
        reinterpret_cast<int (*)(const wchar_t*)>(reinterpret_cast<void*>(GetProcAddress(library, "SetHostDirect")));
    function(L"host");
}

void second_thread() { std::thread(write_through_null).join(); }

struct faulting_sink_t : logging::receiver::sink_t {
    void write_line(const logging::line_t&) override { write_through_null(); }
};
void log_lock_held() {
    logging::process_logger().attach(boost::make_shared<faulting_sink_t>());
    std::thread([] { logging::ormacon_tool.info("never written"); }).join();
}

void heap_lock_held() {
    HeapLock(GetProcessHeap());
    write_through_null();
}

void crash_while_exiting() {
    static const struct last_t {
        ~last_t() { write_through_null(); }
    } last;
    std::exit(0);
}

void crashing_handler() {
    crash::register_handler(write_through_null);
    std::abort();
}

void log_on(const std::string& narrow, const std::wstring& wide, const char* copy) {
    if (narrow.size() == wide.size() && narrow == copy) write_through_null();
}
// The password is in use: on the stack, on the heap, and in what a call left behind.
void password_in_use() {
    std::string password;
    std::getline(std::cin, password);
    char copy[64];
    std::strcpy(copy, password.c_str());
    log_on(password, std::wstring(password.begin(), password.end()), copy);
}

way_to_die_t find_way_to_die(const char* name) {
    static constexpr struct {
        const char* name;
        way_to_die_t way;
    } ways[] = {
        {"access_violation", access_violation},
        {"stack_overflow", stack_overflow},
        {"stack_overflow_unreported", stack_overflow_unreported},
        {"uncaught_int", uncaught_int},
        {"throwing_destructor", throwing_destructor},
        {"pure_virtual_call", pure_virtual_call},
        {"call_abort", call_abort},
        {"heap_corruption", heap_corruption},
        {"invalid_parameter", invalid_parameter},
        {"library_fault", library_fault},
        {"second_thread", second_thread},
        {"log_lock_held", log_lock_held},
        {"heap_lock_held", heap_lock_held},
        {"crash_while_exiting", crash_while_exiting},
        {"crashing_handler", crashing_handler},
        {"password_in_use", password_in_use},
    };
    for (const auto& entry : ways) {
        if (std::strcmp(entry.name, name) == 0) return entry.way;
    }
    return nullptr;
}
