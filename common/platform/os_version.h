#pragma once

#include <string>

namespace platform {

// The operating system for the log, such as "Windows 10.0.17763 (server, x64)". Not subject to the version that the
// system pretends to older programs.
std::string os_version_text();

}  // namespace platform
