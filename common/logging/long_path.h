// Paths beyond 260 characters.
#pragma once

#include <string>

namespace logging {

// The path in full; with the prefix that lifts the length limit when it is long. For calls of the system only: what
// is shown to people stays as it is.
std::wstring system_path(const std::wstring& path);

// Creates the directory and those above it that do not exist. Raises exc::win_sys_exc_t
// "Cannot create directory [%1].".
void create_directories(const std::wstring& path);

}  // namespace logging
