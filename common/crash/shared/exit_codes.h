// The exit status with which the recorder reports to the crashed program.
#pragma once

namespace crash {

enum recorder_exit_t : unsigned {
    recorder_success = 0,
    recorder_unspecified_failure = 1,
    recorder_bad_argument_count = 101,
    recorder_bad_arguments = 102,
    recorder_no_folder = 103,
    recorder_old_dumps_stay = 104,
    recorder_bad_dump_name = 105,
    recorder_no_dump_file = 106,
    recorder_no_dump_content = 107,
    recorder_no_ntdll = 108,
    recorder_no_memset = 109,
    recorder_no_vsnwprintf = 110,
};

}  // namespace crash
