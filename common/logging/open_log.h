// Opening and closing of the process-wide log.
#pragma once

#include <string>

#include "common/logging/component.h"
#include "common/logging/log_settings.h"

namespace logging {

// Opens the log file in the folder below the base log directory, attaches it, and writes the header block. Recognises
// "-log" (echo every record to standard output) and "-verbose" (log level 0 too) on the process's command line.
// Throws what failed, its type kept, with two sentences added.
void initialise(const component_t& component, const std::wstring& folder, const std::wstring& file_name);

// Returns the full path of the log file in use. Throws exc::runtime_exc_t if the log is not open.
std::wstring log_path();

struct log_options_t {
    std::wstring path;  // of the first file of the set, ending in ".log"
    size_limits_t limits;
    command_switches_t switches;
    std::wstring shared_folder{};  // where anyone may create folders: a warning says which of those above the log
                                   // belong to an account that is not trusted
};

// Does the same with everything that initialise() asks the system for given by the caller. Closes the log that is open,
// creates the directory, and opens the first free file of the set. Throws like initialise(), without its last sentence.
void open_log(const component_t& component, const log_options_t& options);

// Ends copying and echo and closes the file; the level filter is the default one again. Called automatically when the
// process ends, after all other static objects are destroyed.
void close_log() noexcept;

}  // namespace logging
