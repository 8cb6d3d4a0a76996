// Paths, and whole files: reading, replacing, removing and locking them. On failure, every function throws error_t with
// the path and the system's reason.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace demo_library {

enum class readers_t { everyone, administrators };  // administrators: also the system and the file's owner
enum class lock_end_t { keep_file, remove_file };

struct close_handle_t {
    void operator()(void* handle) const noexcept;
};
using handle_t = std::unique_ptr<void, close_handle_t>;

// An empty path is a failure, too.
std::wstring absolute_path(const std::wstring& path);

// The folder of an absolute path, without the last backslash.
std::wstring folder_of(const std::wstring& path);

// The folder that this library was loaded from.
std::wstring library_folder();

// Whether this library exports a function of this name.
bool exports(const std::string& function);

// The value of an environment variable, empty when it is not set.
std::wstring environment_text(const wchar_t* name);

// The paths of the following are absolute.

bool exists(const std::wstring& path);

// Returns the content, or nothing if there is no such file.
std::optional<std::string> read_file(const std::wstring& path);

// Writes a temporary file with a random name in the same folder, then renames it: a reader sees either the old content
// or the new one. Creates missing folders. On failure the old file is unchanged and the temporary one is removed.
void write_file(const std::wstring& path, std::string_view content, readers_t readers = readers_t::everyone);

// Does nothing if there is no such file.
void remove_file(const std::wstring& path);

// Removes the temporary files that were left in the same folder by processes killed in write_file(). Call it only while
// no other process can be writing the file.
void remove_temporary_files(const std::wstring& path);

void create_folders(const std::wstring& folder);

// Opens the file so that nobody else can open it. Creates it if it is missing, for administrators only. The lock lasts
// until the handle is closed or the process ends. Blocks while another process has the file open, up to five seconds.
[[nodiscard]] handle_t lock_file(const std::wstring& path, lock_end_t end);

}  // namespace demo_library
