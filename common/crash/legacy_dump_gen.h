#pragma once

#include "common/crash/dump_gen_base.h"

namespace crash::win32 {

// Writes a text report of the loaded modules and the stack frames, without any memory contents, for systems that
// cannot write a minidump. If making the report crashes, what has been written so far is kept.
class legacy_dump_gen_t : public dump_gen_base_t {
public:
    using dump_gen_base_t::dump_gen_base_t;

    // Throws exc::win_sys_exc_t if the file cannot be created or written, and what reserve_dump_identifier() and
    // walk_stack() throw.
    void generate(const cause_t& cause, const std::wstring& path) override;
};

}  // namespace crash::win32
