#include "demo_library/answer.h"

#include "demo_library/error.h"
#include "demo_library/ledger.h"
#include "demo_library/text.h"

#include <windows.h>

namespace demo_library {
namespace {

void write_to_nowhere() {
    volatile std::uintptr_t nowhere = 64;  // in the page that is never mapped; volatile, so the compiler cannot know it
    *reinterpret_cast<volatile int*>(nowhere) = 1;
}

void simulate(const fault_t& fault) {
    if (fault.console_mode) SetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), *fault.console_mode);
    Sleep(fault.delay);
    if (fault.crash == crash_t::access_violation) write_to_nowhere();
    if (fault.crash == crash_t::exception) throw escaping_exception_t();
    if (fault.silent) throw silent_error_t();
    if (fault.text) throw error_t(*fault.text);
}

// The text of the current exception, owned by the caller; null when it has none.
wchar_t* error_text() {
    try {
        throw;
    } catch (const error_t& failure) {
        return allocate(failure.text());
    } catch (const silent_error_t&) {
        return nullptr;
    } catch (const std::exception& exception) {
        return allocate(L"The demonstration library failed: " + to_wide(exception.what()));
    }
}

}  // namespace

scenario_t enter(const char* function) {
    const std::uint32_t call = count_call(function);
    scenario_t scenario = load_scenario();
    const auto fault = scenario.faults.find(function);
    if (fault != scenario.faults.end() && call <= fault->second.first.value_or(call)) simulate(fault->second);
    return scenario;
}

conf_tool::Status failed(conf_tool::LibraryError* error) noexcept {
    try {
        if (error) *error = error_text();
    } catch (...) {  // no memory for the text: the caller gets none
    }
    return 1;
}

}  // namespace demo_library
