#pragma once

#include <string>

namespace platform {

// Returns the operating system for the log, such as "Windows 10.0.17763 (server, x64)". This is the real version, not
// the one that the system reports to older programs.
std::string os_version_text();

}  // namespace platform
