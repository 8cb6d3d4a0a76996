// The dump folder as the recorder keeps it.
#pragma once

#include "common/crash/recorder/ntdll.h"

namespace recorder {

// Longer paths are refused. The system's own limit is lifted by a folder that begins with "\\?\".
inline constexpr std::size_t longest_path = 4096;

// Creates the folder and those above it. The text is changed meanwhile.
bool create_folder(wchar_t* folder);

// Deletes the oldest dumps until fewer than most are left; those that cannot be deleted are left out. False when
// there are still too many.
bool delete_old_dumps(const ntdll_t& functions, const wchar_t* folder, unsigned most);

}  // namespace recorder
