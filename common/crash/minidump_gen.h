#pragma once

#include "common/crash/dump_gen_base.h"

namespace crash::win32 {

// Writes a minidump from within the crashed process.
class minidump_gen_t : public dump_gen_base_t {
public:
    using dump_gen_base_t::dump_gen_base_t;

    // Throws exc::win_sys_exc_t if the debug-help library cannot be loaded, lacks MiniDumpWriteDump() or fails, or if
    // the file cannot be created, and what reserve_dump_identifier() throws.
    void generate(const cause_t& cause, const std::wstring& path) override;
};

}  // namespace crash::win32
