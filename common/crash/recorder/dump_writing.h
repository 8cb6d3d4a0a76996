#pragma once

#include "common/crash/recorder/arguments.h"
#include "common/crash/recorder/ntdll.h"

namespace recorder {

// Forms the name and writes the dump. On failure no file stays behind. Gives recorder_bad_dump_name,
// recorder_no_dump_file, recorder_no_dump_content, or recorder_unspecified_failure without the debug-help library.
crash::recorder_exit_t write_dump(const ntdll_t& functions, const arguments_t& arguments);

}  // namespace recorder
