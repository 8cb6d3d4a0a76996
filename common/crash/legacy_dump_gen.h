#pragma once

#include <functional>

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

// Throws exc::runtime_exc_t for an architecture (the system's number of it) whose stacks walk_stack() cannot walk.
void check_architecture(WORD architecture);

// Calls visit(address of the instruction) for each frame that leads to this place in a thread of this process, the
// innermost first; at most 256. A damaged stack ends the walk. Throws what check_architecture() throws.
void walk_stack(const CONTEXT& thread, const std::function<void(std::uint64_t)>& visit);

}  // namespace crash::win32
