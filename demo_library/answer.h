// The boundary: every exported function with a status does its work in answer(), the one place where the library's
// exceptions become a status and an error text, and where the faults of the scenario strike.
#pragma once

#include <stdexcept>

#include "conf_tool/library_interface.h"
#include "demo_library/scenario.h"

namespace demo_library {

// Leaves the library, as the scenario wants it.
class wanted_exception_t : public std::runtime_error {
public:
    wanted_exception_t() : std::runtime_error("An exception left the demonstration library") {}
};

// Counts the call and does what the scenario wants of the function: waits, fails or crashes. Returns the scenario.
// Raises failure_t, silent_failure_t, wanted_exception_t.
scenario_t enter(const char* function);

// To be called in a handler: puts the text of the exception in flight into *error, which stays as it is when there is
// no text, and returns the status. error may be null.
conf_tool::Status failed(conf_tool::LibraryError* error) noexcept;

// The work is called with the scenario.
template <class Work>
conf_tool::Status answer(const char* function, conf_tool::LibraryError* error, Work work) {
    try {
        work(enter(function));
        return 0;
    } catch (const wanted_exception_t&) {
        throw;
    } catch (...) {
        return failed(error);
    }
}

}  // namespace demo_library
