#pragma once

#include <cstdint>
#include <functional>

#include "common/win32.h"

namespace crash {

// Throws exc::runtime_exc_t "Unexpected processor architecture: '%1'." for an architecture (the system's number of it)
// whose stacks walk_stack() cannot walk.
void check_architecture(WORD architecture);

// Calls visit(address of the instruction) for each frame that leads to this place in a thread of this process, the
// innermost first; at most 256. A damaged stack ends the walk. Throws what check_architecture() throws.
void walk_stack(const CONTEXT& thread, const std::function<void(std::uint64_t)>& visit);

}  // namespace crash
