// Names for addresses, from the debug-help library where there is one.
#pragma once

#include <cstdint>
#include <string>

#include "common/platform/owned.h"

#include <dbghelp.h>

namespace crash {

// One at a time in a process: the library keeps one state for it.
class symbols_t {
public:
    // Looks for symbol files along symbol_search_path() too. Never raises; without the library no symbols are found.
    symbols_t();
    ~symbols_t();
    symbols_t(const symbols_t&) = delete;
    symbols_t& operator=(const symbols_t&) = delete;

    // "symbols loaded", "no symbols are available" or "no matching symbolic information found (error code: 0x%08x)"
    // for the module that begins at the address.
    std::string describe_module(std::uint64_t begin) const;

    // The address, then as far as they are known the file name of the module and the function, each with the distance
    // from its begin.
    std::string describe_address(std::uint64_t address) const;

private:
    std::string function_at(std::uint64_t address) const;

    platform::unique_module library_;
    decltype(&SymGetModuleInfoW64) get_module_info_ = nullptr;
    decltype(&SymFromAddrW) from_address_ = nullptr;
    bool initialised_ = false;
};

}  // namespace crash
