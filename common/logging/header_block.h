#pragma once

#include <string>

namespace logging {

// What stands at the beginning of each run in the log: program, version, process and system, between separator lines.
// Lines are joined with "\n". Raises what platform::program_path() raises.
std::string header_block();

}  // namespace logging
