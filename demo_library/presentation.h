// What an administrator gets to read of a configuration: the summary, and the two files with which the plug-in is set
// up by hand. None of them contains the password.
#pragma once

#include <string>

#include "demo_library/configuration.h"

namespace demo_library {

// Returns lines that end in "\r\n".
std::wstring summary(const configuration_t& configuration);

// The next two create missing folders. Paths are absolute. They throw error_t with the path and the system's reason.

// Writes the settings as XML.
void write_settings(const std::wstring& path, const configuration_t& configuration);

// Writes the CONFIGURE commands for RMAN, to be run with its CMDFILE option.
void write_rman_script(const std::wstring& path, const configuration_t& configuration);

}  // namespace demo_library
