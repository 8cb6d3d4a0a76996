#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/crash/symbols.h"

namespace crash {

struct module_t {
    std::uint64_t begin;
    std::uint64_t end;  // the first byte behind it
    std::wstring path;
};

// The modules of this process; empty when the system does not tell.
std::vector<module_t> loaded_modules();

// "0x%08x - 0x%08x %s (%s) %hu.%hu.%hu.%hu, " with begin, end, file name, path and file version (zeros without one),
// and what symbols are known. Addresses have as many digits as they need.
std::string describe(const module_t& module, const symbols_t& symbols);

}  // namespace crash
