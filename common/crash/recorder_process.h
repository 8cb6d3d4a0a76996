#pragma once

#include <cstdint>
#include <string>

#include "common/platform/owned.h"

namespace crash {

// Starts the recorder without a window; of this process's handles it inherits the given one alone. Raises
// exc::win_sys_exc_t "Failed to start dump generator process. File: %1".
platform::unique_handle start_recorder(const std::wstring& file, const std::wstring& arguments, HANDLE inherited);

// A dump on a slow disk is worth any wait.
inline constexpr std::uint32_t longest_recording = 1'814'400'000;  // milliseconds: 21 days

// The exit code of the process once it has ended. Raises exc::runtime_exc_t "Timed out waiting for dump generator
// process to finish" after longest_wait milliseconds, having ended it, and exc::win_sys_exc_t "Failed to wait for dump
// generator process" or "Failed to get exit code of dump generator process".
std::uint32_t wait_for_recorder(const platform::unique_handle& process, std::uint32_t longest_wait = longest_recording);

}  // namespace crash
