// Work that must be done even when the program crashes, such as restoring the console's mode.
#pragma once

#include "common/logging/component.h"

namespace crash {

using handler_t = void (*)();

// Handlers run in the order of their registration, once, before the dump is written, on the thread that handles the
// crash: usually the crashed one, whose locks are still locked. Any thread may register. Returns false when there is
// no room left (16 handlers).
bool register_handler(handler_t handler) noexcept;

// What a handler throws is logged on the component, and the others still run. Returns false when one of them threw.
bool run_handlers(const logging::component_t& component) noexcept;

}  // namespace crash
