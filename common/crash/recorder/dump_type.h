// What a minidump holds: stacks, thread contexts and the list of modules. Memory contents beyond that would carry
// what the user typed.
#pragma once

#include "common/win32.h"

#include <dbghelp.h>

namespace crash {

inline constexpr auto dump_type = static_cast<MINIDUMP_TYPE>(MiniDumpNormal | MiniDumpFilterMemory);

using mini_dump_write_dump_t = decltype(&MiniDumpWriteDump);

}  // namespace crash
