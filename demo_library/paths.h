// Paths, and the environment variables that may name some.
#pragma once

#include <string>

namespace demo_library {

// Throws failure_t with the system's reason, also for an empty path.
std::wstring absolute_path(const std::wstring& path);

// The folder of an absolute path, without the last backslash.
std::wstring folder_of(const std::wstring& path);

// The folder that this library was loaded from.
std::wstring library_folder();

// The value of an environment variable, empty when it is not set.
std::wstring environment_text(const wchar_t* name);

}  // namespace demo_library
