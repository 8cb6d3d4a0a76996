// Whether a log file or folder that already exists may be used. The program runs with an administrator's rights: files
// and links that an unprivileged user has put in its way must not make it write elsewhere.
#pragma once

#include <string>
#include <vector>

#include "common/platform/owned.h"

namespace platform {

struct opened_file_t {
    unique_file file;
    bool existed;
};

// Opens or creates a log file for reading and writing; meanwhile, others can only read it. Returns an invalid handle,
// with the last error set, if the system does not open it. Throws what require_trusted_folder() and
// require_trusted_file() throw, and exc::runtime_exc_t if access is denied although a folder or file of that name
// exists, or if the file is in another folder than its path says.
opened_file_t open_log_file(const std::wstring& path);

// For a file that existed before it was opened. Open it with FILE_FLAG_OPEN_REPARSE_POINT and READ_CONTROL access.
// Throws exc::runtime_exc_t if the file is a link or folder, has more than one name, has no trusted owner (see
// has_trusted_owner()), or if its attributes cannot be read.
void require_trusted_file(HANDLE file, const std::wstring& path);

// Returns what require_trusted_file() would throw for what is under this name; an empty text if there is nothing, or if
// it cannot be opened.
std::string obstacle_at(const std::wstring& path);

// Returns a handle to the folder: until it is closed, Windows lets nobody rename the folder or one above it. The handle
// is invalid if the folder does not exist. Throws exc::runtime_exc_t with the folder, or one above it, that is a link
// without a trusted owner, or to which the way was changed meanwhile.
unique_file require_trusted_folder(const std::wstring& path);

// The same for a folder that is created, with those above it, if it does not exist. Nothing is created through a link
// that is refused. Also throws what create_directories() throws.
unique_file create_trusted_folder(const std::wstring& path);

// Returns the folder and those above it, up to the base and without it, that have no trusted owner. Returns none if the
// folder is not below the base.
std::vector<std::wstring> foreign_folders(const std::wstring& base, const std::wstring& folder);

}  // namespace platform
