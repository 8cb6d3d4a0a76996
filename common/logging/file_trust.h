// A program that runs with an administrator's rights must not be led elsewhere by files and folders that a user without
// rights has put where the log belongs.
#pragma once

#include <string>

#include "common/win32.h"

namespace logging {

// For a file that was there before it was opened, which must be opened with FILE_FLAG_OPEN_REPARSE_POINT and the right
// READ_CONTROL. Throws exc::runtime_exc_t "File [%1] is not used: %2." when it is a reparse point, has more than one
// name, or does not belong to SYSTEM, the Administrators or the account of this process.
void require_trusted_file(HANDLE file, const std::wstring& path);

// Throws exc::runtime_exc_t "Log folder [%1] is not used: [%2] leads elsewhere and belongs to another account." when
// the folder or one above it is a reparse point whose owner is none of them.
void require_trusted_folder(const std::wstring& path);

}  // namespace logging
