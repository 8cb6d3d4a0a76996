// Calls into libraries that handle faults of their own, and calls that may fault.
#pragma once

#include "common/win32.h"

namespace platform {

// Calls the function with the argument. A fault that the called library handles itself goes unnoticed. A system
// exception that leaves the function ends the call, and its code becomes the last error; what the function has locked
// or allocated by then stays so.
void call_guarded(void (*function)(void*), void* argument) noexcept;

// The same for any callable that returns whether it succeeded. Returns false after an exception as well. The callable
// must not throw a C++ exception.
template <class Call>
bool call_guarded(Call call) noexcept {
    bool succeeded = false;
    auto run = [&] { succeeded = call() != 0; };
    call_guarded([](void* passed) { (*static_cast<decltype(run)*>(passed))(); }, &run);
    return succeeded;
}

// Whether the calling thread is in such a call.
bool is_in_guarded_call() noexcept;

// For a thread that never returns to the guarded call that it is in, because it handles a crash that happened there.
void abandon_guarded_call() noexcept;

}  // namespace platform
