// Paths as text: taking them apart, joining them, and the forms that the system's file functions accept.
#pragma once

#include <string>

namespace platform {

// Returns the folder of a file, without a separator at its end unless it is a root ("D:\name" is in "D:\"). Returns an
// empty text for a path without a separator.
std::wstring parent_of(const std::wstring& path);

// Returns the part after the last separator.
std::wstring file_name_of(const std::wstring& path);

// Returns the path of a file in a folder, with one separator between them.
std::wstring join_path(const std::wstring& folder, const std::wstring& name);

// Returns the full path, resolved against the current folder and without "." and "..", or the path unchanged if the
// system cannot do that.
std::wstring full_path(const std::wstring& path);

// Returns the full path with the prefix that lifts the limit of 260 characters. Use it only for system calls, not for
// what people read. A path that already has such a prefix or names a device ("NUL") gets none.
std::wstring system_path(const std::wstring& path);

// Returns where an open file or folder really is, in the form of system_path() and without any link on the way. A path
// that leads through a link, a substituted drive or a short name differs from it. Returns an empty text if the system
// cannot say.
std::wstring final_path(void* opened);

// Returns whether two paths are the same text; the system ignores case in them.
bool same_path(const std::wstring& first, const std::wstring& second);

// Creates the folder and any missing folders above it. Throws exc::win_sys_exc_t with the path.
void create_directories(const std::wstring& path);

// Returns the text with each %NAME% replaced by that environment variable, or unchanged if the system cannot do that.
std::wstring expand_variables(const std::wstring& text);

}  // namespace platform
