// Reading and replacing of whole files, and where the library's files are.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace demo_library {

enum class readers_t { everyone, administrators };  // administrators: also the system and the file's owner

// The content, nothing when there is no such file. Raises failure_t with the path and the system's reason.
std::optional<std::string> read_file(const std::wstring& path);

// Writes a temporary file beside the path and renames it over: a reader sees the old content or the new one. Creates
// missing folders. Raises failure_t with the path and the system's reason, and leaves the old file then.
void write_file(const std::wstring& path, std::string_view content, readers_t readers = readers_t::everyone);

// Raises failure_t; a file that is not there is no failure.
void remove_file(const std::wstring& path);

// Raises failure_t with the system's reason, also for an empty path.
std::wstring absolute_path(const std::wstring& path);

// The folder that this library was loaded from.
std::wstring library_folder();

// The value of an environment variable, empty when it is not set.
std::wstring environment_text(const wchar_t* name);

}  // namespace demo_library
