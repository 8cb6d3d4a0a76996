// The dump folder as the recorder maintains it.
#pragma once

#include "common/crash/recorder/ntdll.h"

namespace recorder {

// Longer paths are refused. The system's own limit does not apply to a folder that begins with "\\?\".
inline constexpr std::size_t longest_path = 4096;

// Creates the folder where it is missing; the crashed program usually keeps it open. Returns false on failure.
bool create_folder(const wchar_t* folder);

// Deletes the oldest dumps until fewer than most are left, and skips those that cannot be deleted. Returns false when
// there are still too many.
bool delete_old_dumps(const ntdll_t& functions, const wchar_t* folder, ULONG64 most);

}  // namespace recorder
