// What the administrator can set for logging, in the product's registry key and on the command line.
#pragma once

#include <cstdint>
#include <string>

namespace logging {

struct size_limits_t {
    std::uint64_t log_size = 15'728'640;  // bytes; 0: the log grows without limit
    std::uint32_t archive_count = 10;
};

// Returns "LogDirectory" or, if it is missing, the folder "Tovak\Backup" of the common application data. Throws
// exc::win_sys_exc_t if the system does not say where that is.
std::wstring base_log_directory();

// Returns the full path of the folder below it, which contains logs and dumps. Throws like base_log_directory().
std::wstring log_folder_path(const std::wstring& folder);

// Returns "AgentMaxLogSize" (32 or 64 bits) and "AgentMaxLogCount" (32 bits, at most 1000 is used), or both defaults
// when one of them is missing or has another type.
size_limits_t read_size_limits();

// The same, read once in the life of the process.
const size_limits_t& process_size_limits();

struct command_switches_t {
    bool echo = false;     // "-log": every record goes to standard output too
    bool verbose = false;  // "-verbose": records of level 0 are logged, and what is written to std::cout
};

// Looks for the switches among the arguments of a whole command line, which begins with the program's name.
command_switches_t find_switches(const wchar_t* command_line);

}  // namespace logging
