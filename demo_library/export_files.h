// The two files with which an administrator sets the plug-in up by hand. Paths are absolute; missing folders are
// created. Both functions throw failure_t with the path and the system's reason.
#pragma once

#include <string>

#include "demo_library/configuration.h"

namespace demo_library {

// The settings as XML, without the password.
void write_settings(const std::wstring& path, const configuration_t& configuration);

// The CONFIGURE commands for RMAN, to be run with its CMDFILE option.
void write_rman_script(const std::wstring& path, const configuration_t& configuration);

}  // namespace demo_library
