// Keeps what the user typed out of a minidump.
//
// A stack contains passwords as well as return addresses: short texts, and what finished calls left there. A backtrace
// needs only the addresses.
#pragma once

#include "common/win32.h"

namespace crash {

// Overwrites with zeros, in a complete minidump file of an x64 process that is open for reading and writing:
// - in memory contents outside of modules, every 8 bytes that are not an address within a module or a stack;
// - in thread contexts, every integer register that is not such an address, and everything except the integer registers
//   and the place of execution.
// Returns false with the last error set when the file is not a minidump or cannot be mapped.
bool filter_values(HANDLE file);

}  // namespace crash
