// Paths as text: taking them apart, and the forms that the system's file functions accept.
#pragma once

#include <string>

namespace platform {

// The folder of a file, which keeps its separator only when it is the root of a drive ("D:\name" is in "D:\"). Empty
// for a path without a separator.
std::wstring parent_of(const std::wstring& path);

// The part after the last separator.
std::wstring file_name_of(const std::wstring& path);

// The path of a file in a folder, with one separator between them.
std::wstring join_path(const std::wstring& folder, const std::wstring& name);

// The full path with the prefix that lifts the limit of 260 characters. Only for calls of the system: what people see
// stays as it is. A device path, and a path that cannot be completed, come back unchanged.
std::wstring system_path(const std::wstring& path);

// Creates the folder and any missing folders above it. Throws exc::win_sys_exc_t "Cannot create directory [%1].".
void create_directories(const std::wstring& path);

// The text with each %NAME% replaced by that environment variable; unchanged where the system cannot do that.
std::wstring expand_variables(const std::wstring& text);

}  // namespace platform
