#pragma once

#include "common/crash/dump_gen_base.h"

namespace crash::win32 {

// Writes a minidump from within the crashed process.
class minidump_gen_t : public dump_gen_base_t {
public:
    // Raises exc::win_sys_exc_t "Cannot load dbghelp.dll library.", "MiniDumpWriteDump function is not exported from
    // the dbghelp dynamic library.", "Cannot create a blank minidump file. File path: [%1]." or
    // "MiniDumpWriteDump() function call has failed.", and what reserve_dump_identifier() raises.
    void generate(const failure_t& failure, const std::wstring& path) override;
};

}  // namespace crash::win32
