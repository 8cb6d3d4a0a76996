#pragma once

#include <cstdint>
#include <string>

#include "common/platform/owned.h"

namespace crash {

// Starts the recorder without a window; of this process's handles it inherits the given one alone. Raises
// exc::win_sys_exc_t "Failed to start dump generator process. File: %1".
platform::unique_handle start_recorder(const std::wstring& file, const std::wstring& arguments, HANDLE inherited);

// The exit code of the process once it has ended. Raises exc::runtime_exc_t "Timed out waiting for dump generator
// process to finish" after 21 days, having ended it, and exc::win_sys_exc_t "Failed to wait for dump generator
// process" or "Failed to get exit code of dump generator process".
std::uint32_t wait_for_recorder(const platform::unique_handle& process);

}  // namespace crash
