// The system's debug-help library, and the names that it finds for addresses. It handles faults of its own, so each
// call is guarded.
#pragma once

#include <cstdint>
#include <string>

#include "common/platform/owned.h"

#include <dbghelp.h>

namespace crash {

// Loads it from the system's folder only, whatever the current folder and the program's contain. Empty on failure, with
// the last error set.
platform::unique_module load_debug_help();

// One at a time in a process: the library keeps one state for it.
class symbols_t {
public:
    // Also looks for symbol files in "%_NT_SYMBOL_PATH%;%_NT_ALT_SYMBOL_PATH%;%SystemRoot%\Symbols", which may name
    // symbol servers; the watchdog limits how long a slow one takes. Without the library no symbols are found.
    symbols_t();
    ~symbols_t();
    symbols_t(const symbols_t&) = delete;
    symbols_t& operator=(const symbols_t&) = delete;

    // What symbols are known for the module that starts at the address, as words for the report.
    std::string describe_module(std::uint64_t begin) const;

    // The address, then, where they are known, the file name of the module and the function, each with the distance
    // from its start.
    std::string describe_address(std::uint64_t address) const;

private:
    std::string function_at(std::uint64_t address) const;

    platform::unique_module library_;
    decltype(&SymGetModuleInfoW64) get_module_info_ = nullptr;
    decltype(&SymFromAddrW) from_address_ = nullptr;
    bool initialised_ = false;
};

}  // namespace crash
