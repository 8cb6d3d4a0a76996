// What is done between a crash and the end of the process.
#pragma once

#include <string>

#include "common/crash/failure.h"

namespace crash {

// Where dumps go from now on; without it to "Dumps" in the current folder. The folder need not exist. Any thread.
void set_dump_folder(const std::wstring& folder);

// Logs "Trying to generate crash dump", runs the registered handlers between "Executing crash handlers." and "Crash
// handlers were successfully executed." (left out when one raised), removes old dumps, and writes one dump: out of
// process, else as a minidump from within, else as a text report. Every failure is logged; none stops the rest. Last,
// the standard error gets one line that tells of the crash.
void handle_crash(const failure_t& failure) noexcept;

}  // namespace crash
