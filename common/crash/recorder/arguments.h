// The recorder's command line: name, process handle, process id, thread id, address of the EXCEPTION_POINTERS in that
// process (0: none), id of the thread that must not be suspended (0: none), dump folder, base name, maximum of dumps.
// Numbers are decimal, texts are in quotes.
#pragma once

#include "common/crash/shared/exit_codes.h"
#include "common/win32.h"

namespace recorder {

struct arguments_t {
    ULONG64 process;  // an inherited handle
    ULONG64 process_id;
    ULONG64 thread_id;
    ULONG64 exception_pointers;
    ULONG64 watching_thread;
    ULONG64 max_dumps;  // in the folder, the new one included
    const wchar_t* folder;
    const wchar_t* base_name;
};

// Splits the command line into the arguments, which point into it. Returns recorder_bad_argument_count, or
// recorder_bad_arguments for an invalid number, an empty text, a base name with a separator, or a handle that does not
// belong to that process.
crash::recorder_exit_t read_arguments(wchar_t* command_line, arguments_t& arguments);

}  // namespace recorder
