// Work that must be done even when the program crashes, such as giving the console back in its original state.
#pragma once

namespace crash {

using handler_t = void (*)();

// Handlers run in the order of their registration, once, before the dump is written, usually on a thread of the crash
// handling while the crashed one stands still: they must not wait for it. What one raises is logged and the others
// still run. False when there is no more room (16 handlers). Any thread may register.
bool register_handler(handler_t handler) noexcept;

// False when one of them raised.
bool run_handlers() noexcept;

}  // namespace crash
