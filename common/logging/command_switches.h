#pragma once

namespace logging {

struct command_switches_t {
    bool echo = false;     // "-log": every record goes to standard output too
    bool verbose = false;  // "-verbose": records of level 0 are logged, and what is written to std::cout
};

// Looks for the switches among the arguments of a whole command line, the program's name in front.
command_switches_t find_switches(const wchar_t* command_line);

}  // namespace logging
