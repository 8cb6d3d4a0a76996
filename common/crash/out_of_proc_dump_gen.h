#pragma once

#include "common/crash/dump_gen_base.h"
#include "common/platform/owned.h"

namespace crash::win32 {

// Lets a small program write the minidump from outside of the crashed process.
class COutOfProcDumpGen : public dump_gen_base_t {
public:
    // most_dumps: what the recorder leaves in the folder, the new dump included. Raises exc::win_sys_exc_t "Cannot
    // initialize out-of-process dump generator: failed to duplicate current process handle" and, as the last part,
    // "Failed to create out-of-process dump generator".
    explicit COutOfProcDumpGen(unsigned most_dumps);

    // Raises what recorder_file_t, start_recorder() and wait_for_recorder() raise, and exc::runtime_exc_t "Dump
    // generator process failed with %1: %2" with the exit code and its text.
    void generate(const failure_t& failure, const std::wstring& path) override;

private:
    std::wstring arguments(const failure_t& failure, const std::wstring& path) const;

    unsigned most_dumps_;
    platform::unique_handle process_;  // this process, inheritable
};

}  // namespace crash::win32
