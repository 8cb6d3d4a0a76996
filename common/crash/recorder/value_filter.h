// Keeps what the user typed out of a minidump.
//
// A stack holds passwords as well as return addresses: short texts live in it, and what a finished call left behind.
// For a backtrace the addresses are enough.
#pragma once

#include "common/win32.h"

namespace crash {

// Overwrites with zeros, in a complete minidump file of an x64 process: in memory contents outside of modules each
// 8 bytes that are no address within a module or a stack; in thread contexts each integer register that is none, and
// everything that is neither an integer register nor the place of execution. The file is open for reading and writing.
// False with the last error set when it could not be done: the file is no minidump, or cannot be mapped.
bool filter_values(HANDLE file);

}  // namespace crash
