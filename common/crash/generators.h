// The ways to write a dump of this process.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/logging/component.h"
#include "common/platform/owned.h"

namespace crash {

struct failure_t {
    std::uint32_t code;  // becomes the exit status of the process
    std::uint32_t thread_id;
    EXCEPTION_POINTERS* pointers;  // valid until the process ends
};

namespace win32 {

class dump_gen_base_t {
public:
    // What the generator does is logged on the component, which must outlive it.
    explicit dump_gen_base_t(const logging::component_t& component) : component_(component) {}
    virtual ~dump_gen_base_t() = default;
    dump_gen_base_t(const dump_gen_base_t&) = delete;
    dump_gen_base_t& operator=(const dump_gen_base_t&) = delete;

    // Writes one dump of the failure into an existing folder. The generator completes the path: it appends what makes
    // the name unique, and the extension. On failure it leaves no file and throws an exc exception.
    virtual void generate(const failure_t& failure, const std::wstring& path) = 0;

    // Whether there is a dump. A generator that has crashed may leave one that ends early.
    bool has_dump() const noexcept { return has_dump_; }

protected:
    void log(std::string_view text) const noexcept { component_.info(text); }
    void set_has_dump(bool has_dump) noexcept { has_dump_ = has_dump; }

private:
    const logging::component_t& component_;
    bool has_dump_ = false;
};

// Starts a small program, the recorder, which writes the minidump from outside the crashed process.
class COutOfProcDumpGen : public dump_gen_base_t {
public:
    // most_dumps: how many dumps the recorder leaves in the folder, including the new one. program_folder: where its
    // file is put. Throws exc::win_sys_exc_t "Cannot initialize out-of-process dump generator: failed to duplicate
    // current process handle", with "Failed to create out-of-process dump generator" as its last part.
    COutOfProcDumpGen(const logging::component_t& component, unsigned most_dumps, std::wstring program_folder);

    // Throws what recorder_file_t, start_recorder() and wait_for_recorder() throw, and exc::runtime_exc_t "Dump
    // generator process failed with %1: %2" with the exit code and its text.
    void generate(const failure_t& failure, const std::wstring& path) override;

private:
    std::wstring arguments(const failure_t& failure, const std::wstring& path) const;

    unsigned most_dumps_;
    std::wstring program_folder_;
    platform::unique_handle process_;  // this process, inheritable
};

// Writes a minidump from within the crashed process.
class minidump_gen_t : public dump_gen_base_t {
public:
    using dump_gen_base_t::dump_gen_base_t;

    // Throws exc::win_sys_exc_t "Cannot load dbghelp.dll library.", "MiniDumpWriteDump function is not exported from
    // the dbghelp dynamic library.", "Cannot create a blank minidump file. File path: [%1]." or
    // "MiniDumpWriteDump() function call has failed.", and what reserve_dump_identifier() throws.
    void generate(const failure_t& failure, const std::wstring& path) override;
};

// Writes a text report of the loaded modules and the stack frames, without any memory contents, for systems that
// cannot write a minidump. If making the report crashes, what has been written so far is kept.
class legacy_dump_gen_t : public dump_gen_base_t {
public:
    using dump_gen_base_t::dump_gen_base_t;

    // Throws exc::win_sys_exc_t "Cannot create a legacy dump file. File path: [%1]." or "Cannot write a legacy dump
    // file. File path: [%1].", and what reserve_dump_identifier() and walk_stack() throw.
    void generate(const failure_t& failure, const std::wstring& path) override;
};

}  // namespace win32
}  // namespace crash
