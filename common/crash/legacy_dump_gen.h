#pragma once

#include "common/crash/dump_gen_base.h"

namespace crash::win32 {

// Writes a text report of the loaded modules and the stack frames, for systems that cannot write a minidump. It holds
// no memory contents. Should the report itself crash, it ends there.
class legacy_dump_gen_t : public dump_gen_base_t {
public:
    // Raises exc::win_sys_exc_t "Cannot create a legacy dump file. File path: [%1]." or "Cannot write a legacy dump
    // file. File path: [%1].", and what reserve_dump_identifier() and walk_stack() raise.
    void generate(const failure_t& failure, const std::wstring& path) override;
};

}  // namespace crash::win32
