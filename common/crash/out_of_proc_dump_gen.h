#pragma once

#include "common/crash/dump_gen_base.h"
#include "common/platform/owned.h"

namespace crash::win32 {

// Starts a small program, the recorder, which writes the minidump from outside the crashed process.
class COutOfProcDumpGen : public dump_gen_base_t {
public:
    // max_dumps: how many dumps the recorder leaves in the folder, including the new one. program_folder: where its
    // file is put. Throws exc::win_sys_exc_t if the handle of this process cannot be duplicated.
    COutOfProcDumpGen(const logging::component_t& component, unsigned max_dumps, std::wstring program_folder);

    // Throws what recorder_file_t, start_recorder() and wait_for_recorder() throw, and exc::runtime_exc_t with the exit
    // code and its text if the recorder fails.
    void generate(const cause_t& cause, const std::wstring& path) override;

private:
    std::wstring arguments(const cause_t& cause, const std::wstring& path) const;

    unsigned max_dumps_;
    std::wstring program_folder_;
    platform::unique_handle process_;  // this process, inheritable
};

}  // namespace crash::win32
