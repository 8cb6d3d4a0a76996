// What a crashed thread runs until the process ends.
#pragma once

#include "common/win32.h"

namespace crash {

// Creates the spare thread, which handles the crash of a thread that has too little stack left. Where it cannot be
// created, such a thread handles its crash itself.
void prepare_spare_thread() noexcept;

// The part of the calling thread's stack that is still free, in bytes.
std::size_t stack_left() noexcept;

// Handles the crash of the calling thread and ends the process with the exception's code. The calling thread does the
// work, since whatever it has locked (heap, loader, log) stays open to it. A second thread that crashes meanwhile
// blocks forever. When the handling itself crashes, it continues with its next stage.
[[noreturn]] void die(EXCEPTION_POINTERS* pointers) noexcept;

}  // namespace crash
