// Which files this process may trust because of their owner, and private folders.
#pragma once

#include <string>

#include "common/win32.h"

namespace platform {

// Returns whether a file of this owner may be used as if this program had created it: whether the owner is SYSTEM,
// Administrators or the account of this process. Throws exc::win_sys_exc_t if that account cannot be determined.
bool is_trusted_owner(PSID owner);

// The same for an open file or folder, or another kind of object, whose handle needs READ_CONTROL access. Returns true
// if the file system has no owners, and false if the owner cannot be read.
bool has_trusted_owner(HANDLE opened);

// Creates a folder to which only SYSTEM, Administrators and the account of this process have access. Everything in it
// inherits these permissions; the folder itself inherits none. On failure, returns false with the last error set.
// Throws like is_trusted_owner().
bool create_private_folder(const std::wstring& path);

// Gives an open folder, whose handle needs WRITE_DAC access, the permissions of a private one. What is already in the
// folder keeps its own: others may have put links to their victims there. Returns true if the file system has no
// permissions. On failure, returns false with the last error set. Throws like is_trusted_owner().
bool make_private(HANDLE folder);

}  // namespace platform
