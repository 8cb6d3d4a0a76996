// The recorder's command line: name, process handle, process id, thread id, address of the EXCEPTION_POINTERS in that
// process (0: none), id of the thread to be left alone (0: none), dump folder, base name, most dumps. Numbers are
// decimal, texts stand in quotes.
#pragma once

#include "common/crash/recorder/exit_codes.h"
#include "common/win32.h"

namespace recorder {

struct arguments_t {
    HANDLE process;  // inherited
    DWORD process_id;
    DWORD thread_id;
    ULONG64 exception_pointers;
    DWORD watching_thread;
    wchar_t* folder;
    wchar_t* base_name;
    unsigned most_dumps;  // in the folder, the new one included
};

// Cuts the command line into the arguments, which point into it. Gives recorder_bad_argument_count, or
// recorder_bad_arguments for a number that is none, an empty text, a base name with a separator, or a handle that is
// not one of that process.
crash::recorder_exit_t read_arguments(wchar_t* command_line, arguments_t& arguments);

}  // namespace recorder
