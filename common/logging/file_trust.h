// Whether a log file or folder that already exists may be used. The program runs with an administrator's rights: files
// and links that an unprivileged user has put in its way must not make it write elsewhere.
#pragma once

#include <string>

#include "common/platform/owned.h"

namespace logging {

// For a file that existed before it was opened. Open it with FILE_FLAG_OPEN_REPARSE_POINT and READ_CONTROL access.
// Throws exc::runtime_exc_t "File [%1] is not used: %2." if the file is a reparse point, has more than one name, has no
// trusted owner (see platform::has_trusted_owner()), or if its attributes cannot be read.
void require_trusted_file(HANDLE file, const std::wstring& path);

// For a path that could not be opened because access was denied. Throws exc::runtime_exc_t "File [%1] is not used:
// access to it is denied." if a folder or a file of that name exists.
void refuse_existing_file(const std::wstring& path);

// Returns a handle to the folder: until it is closed, Windows lets nobody rename the folder. The handle is invalid if
// the folder does not exist. Throws exc::runtime_exc_t "Log folder [%1] is not used: [%2] leads elsewhere and belongs
// to another account." if the folder or one above it is a reparse point without a trusted owner.
platform::unique_file require_trusted_folder(const std::wstring& path);

}  // namespace logging
