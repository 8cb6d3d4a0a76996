#pragma once

#include <string>

#include "common/platform/owned.h"

namespace crash {

// The recorder's program file on disk, as long as this object lives.
class recorder_file_t {
public:
    // Writes the file "TovakDumpRecorder" into the folder and re-opens it so that the system deletes it when it is
    // closed, even when this process is killed. Raises exc::win_sys_exc_t "Failed to create dump recorder file: %1",
    // "Failed to write dump recorder code to %1" or "Failed to re-open dump recorder for deletion: %1".
    explicit recorder_file_t(const std::wstring& folder);

    const std::wstring& path() const { return path_; }

private:
    std::wstring path_;
    platform::unique_file deletion_;
};

}  // namespace crash
