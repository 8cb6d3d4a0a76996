#pragma once

#include <cstdint>
#include <string>

namespace crash {

// One line on the standard error, for whoever sits before the console: that the program crashed, with which code, and
// the folder of the dump; an empty folder tells that there is none. Not through any stream of the process, whose locks
// the crashed thread may hold.
void tell_crash(std::uint32_t code, const std::wstring& dump_folder);

}  // namespace crash
