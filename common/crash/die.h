// What a crashed thread does until the process ends.
#pragma once

#include "common/win32.h"

namespace crash {

// Starts the spare thread, which handles the crash of a thread that has too little stack left (without it, that thread
// does). It waits from the beginning: the start of a thread needs locks that the crashed thread may hold.
void prepare_spare_thread() noexcept;

// Whether the calling thread is the one that handles the crash of this process.
bool is_handling_crash() noexcept;

// Starts the watchdog, handles the crash of the calling thread and ends the process with the exception's code. The
// calling thread does the work itself if it has enough stack left, because the locks that it holds (heap, loader, log)
// do not block it. Another thread that crashes meanwhile blocks until then. If a stage of the handling crashes
// with a system error (0xC...), the next stage follows; other exceptions are left to their handlers and the system.
[[noreturn]] void die(EXCEPTION_POINTERS* pointers) noexcept;

}  // namespace crash
