// The change from the thread that crashed to the one that handles the crash.
#pragma once

#include "common/win32.h"

namespace crash {

// Creates the thread that will handle a crash, its stack in memory already: the crashed thread may have none left.
// Without it (no memory for it) the crashed thread handles its crash itself.
void prepare_crash_thread() noexcept;

// Handles the crash of the calling thread and ends the process with the exception's code. The pointers stay valid for
// as long as the caller does not return, which it never does. A crash of another thread meanwhile waits for that end;
// a crash of the handling itself ends the process at once, with the code of the first crash.
[[noreturn]] void die(EXCEPTION_POINTERS* pointers) noexcept;

}  // namespace crash
