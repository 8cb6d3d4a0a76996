#pragma once

#include <cstdint>
#include <vector>

#include "common/win32.h"

namespace crash {

// Raises exc::runtime_exc_t "Unexpected processor architecture: '%1'." for a machine (the system's number of the
// architecture) whose stacks walk_stack() cannot walk.
void check_architecture(WORD architecture);

// The instruction addresses of the frames of a thread of this process that stands still, the innermost first; at most
// 256. A damaged stack ends the walk. Raises what check_architecture() raises.
std::vector<std::uint64_t> walk_stack(const CONTEXT& thread);

}  // namespace crash
