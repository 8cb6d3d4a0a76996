// The recorder, a small program that writes the dump: putting its file on the disk, and running it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/platform/owned.h"

namespace crash {

// The recorder's program file. It exists as long as this object.
class recorder_file_t {
public:
    // Writes the file "TovakDumpRecorder" into the folder and re-opens it so that the system deletes it when it is
    // closed, even if this process is killed. Until then nobody can rename, replace or delete it.
    //
    // If the file exists, another program may be crashing at the same time: waits for it, at most timeout milliseconds.
    // A file that is not in use after that was left behind (by a power failure) and is replaced.
    //
    // Throws exc::win_sys_exc_t if the file cannot be created, written or re-opened.
    explicit recorder_file_t(const std::wstring& folder, std::uint32_t timeout = 5000);

    const std::wstring& path() const { return path_; }

private:
    std::wstring path_;
    platform::unique_file deletion_;
};

// Starts the recorder without a window; it inherits all inheritable handles. Throws exc::win_sys_exc_t.
platform::unique_handle start_recorder(const std::wstring& file, const std::wstring& arguments);

// Long enough for any dump, even on a slow disk; fixed from outside.
inline constexpr std::uint32_t recording_timeout = 1'814'400'000;  // milliseconds: 21 days

// Waits until the process has ended and returns its exit code. After timeout milliseconds it ends the process and
// throws exc::runtime_exc_t. Throws exc::win_sys_exc_t if the system cannot wait or has no exit code.
std::uint32_t wait_for_recorder(const platform::unique_handle& process, std::uint32_t timeout = recording_timeout);

// Returns what an exit code of the recorder means; "unexpected exit code" for one that is not the recorder's own.
std::string_view recorder_exit_text(std::uint32_t code) noexcept;

}  // namespace crash
