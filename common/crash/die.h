// What a crashed thread does until the process ends.
#pragma once

#include "common/win32.h"

namespace crash {

// Creates the spare thread, suspended: it handles the crash of a thread that has too little stack left. If it cannot be
// created, such a thread handles its crash itself.
void prepare_spare_thread() noexcept;

// Returns how many bytes of the calling thread's stack are still free.
std::size_t stack_left() noexcept;

// Handles the crash of the calling thread and ends the process with the exception's code. The calling thread does the
// work itself if it has enough stack left, because the locks that it holds (heap, loader, log) do not block it. Another
// thread that crashes meanwhile blocks forever. If a stage of the handling crashes, the next stage follows.
[[noreturn]] void die(EXCEPTION_POINTERS* pointers) noexcept;

}  // namespace crash
