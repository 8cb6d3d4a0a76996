// The account that this process runs under, and whose files it may trust.
#pragma once

#include <string>

#include "common/win32.h"

namespace platform {

// Whether a file of this owner may be used as if this program had created it: the owner is SYSTEM, the Administrators
// or the current account. Throws exc::win_sys_exc_t "Cannot determine the current account.".
bool is_trusted_owner(PSID owner);

// The same for an open file or folder, whose handle needs READ_CONTROL. Where the file system knows no owners, true.
// Where the owner cannot be read, false.
bool has_trusted_owner(HANDLE opened);

// Creates a folder with full access for SYSTEM, the Administrators and the current account, inherited by everything in
// it, while the folder itself inherits nothing. Returns false with the last error set on failure. Throws like
// has_trusted_owner().
bool create_private_folder(const std::wstring& path);

}  // namespace platform
