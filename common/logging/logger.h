// Opening and closing of the process-wide log.
#pragma once

#include <string>

#include "common/logging/component.h"

namespace logging {

// Opens the log file in the folder below the base log directory, attaches it, and writes the header block. Recognises
// "-log" (echo every record to standard output) and "-verbose" (log level 0 too) on the process's command line.
// Throws what failed, its type kept, with the sentences "Failed to initialize log [%1]." and "Cannot init logging".
void initialise(const component_t& component, const std::wstring& folder, const std::wstring& file_name);

// The full path of the log file in use. Raises runtime_exc_t
// "Value of the log path is unavailable: log is not initialized yet.".
std::wstring log_path();

}  // namespace logging
