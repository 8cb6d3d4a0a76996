// A minidump file, from its creation until it is safe to keep.
//
// What the system writes into it may contain what the user typed. Until that has been filtered out, the file is marked
// for deletion when it is closed, so that nothing is left, however the program that writes it ends.
#pragma once

#include "common/win32.h"

#include <dbghelp.h>

namespace crash {

using mini_dump_write_dump_t = decltype(&MiniDumpWriteDump);

struct dump_source_t {
    HANDLE process;
    DWORD process_id;
    MINIDUMP_EXCEPTION_INFORMATION* exception;  // null if there is none
    DWORD watching_thread;                      // left out of the dump and not suspended; 0 if there is none
};

// Marks an open file for deletion when it is closed, or removes the mark. The handle needs DELETE access. On failure,
// returns false with the last error set.
bool delete_when_closed(HANDLE file, bool deleted);

// Creates a file that does not exist yet and marks it for deletion. On failure, returns INVALID_HANDLE_VALUE with the
// last error set.
HANDLE create_minidump(const wchar_t* path);

// Writes the content, filters it, and removes the mark. On failure, returns false with the last error set; closing the
// file then deletes it.
bool write_minidump(mini_dump_write_dump_t writer, HANDLE file, const dump_source_t& source);

}  // namespace crash
