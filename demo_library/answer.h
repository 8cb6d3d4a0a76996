// The boundary: every exported function with a status does its work in answer(), the one place where the library's
// exceptions become a status and an error text, and where the faults of the scenario are simulated.
#pragma once

#include <stdexcept>

#include "conf_tool/library_interface.h"
#include "demo_library/scenario.h"

namespace demo_library {

// Thrown out of the library on purpose, when the scenario asks for it.
class escaping_exception_t : public std::runtime_error {
public:
    escaping_exception_t() : std::runtime_error("An exception left the demonstration library") {}
};

// Counts the call and simulates the function's fault in the scenario: waits, fails or crashes. Returns the scenario.
// Throws error_t, silent_error_t, escaping_exception_t.
scenario_t enter(const char* function);

// Call it in a handler. Returns the status and sets *error to the text of the current exception, or leaves it unchanged
// when there is no memory for the text. error may be null.
conf_tool::Status failed(conf_tool::LibraryError* error) noexcept;

// Calls work with the scenario.
template <class Work>
conf_tool::Status answer(const char* function, conf_tool::LibraryError* error, Work work) {
    try {
        const scenario_t server = enter(function);
        work(server);
        return 0;
    } catch (const escaping_exception_t&) {
        throw;
    } catch (...) {
        return failed(error);
    }
}

}  // namespace demo_library
