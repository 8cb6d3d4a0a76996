#pragma once

#include <cstdint>
#include <functional>

#include "common/win32.h"

namespace crash {

// Raises exc::runtime_exc_t "Unexpected processor architecture: '%1'." for a machine (the system's number of the
// architecture) whose stacks walk_stack() cannot walk.
void check_architecture(WORD architecture);

// Calls visit(address of the instruction) for each frame of a thread of this process that stands still, the innermost
// first; at most 256. A damaged stack ends the walk. A damaged frame register may crash it: the system's unwinder
// trusts it. So each frame is visited before the next one is looked for. Raises what check_architecture() raises.
void walk_stack(const CONTEXT& thread, const std::function<void(std::uint64_t)>& visit);

}  // namespace crash
