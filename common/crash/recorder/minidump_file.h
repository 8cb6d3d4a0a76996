// A minidump file, from its creation until it may be kept.
//
// What the system writes contains what the user typed. Until it has been filtered, the file is marked to be deleted
// when it is closed, so that nothing is left however the writing program ends.
#pragma once

#include "common/win32.h"

#include <dbghelp.h>

namespace crash {

using mini_dump_write_dump_t = decltype(&MiniDumpWriteDump);

struct dump_source_t {
    HANDLE process;
    DWORD process_id;
    MINIDUMP_EXCEPTION_INFORMATION* exception;  // null: none
    DWORD watching_thread;                      // not in the dump and not suspended; 0: none
};

// Marks an open file to be deleted when it is closed, or takes the mark back. The handle needs the right to delete.
// Returns false with the last error set on failure.
bool delete_when_closed(HANDLE file, bool deleted);

// Creates a file that does not exist yet and marks it. Returns INVALID_HANDLE_VALUE with the last error set on failure.
HANDLE create_minidump(const wchar_t* path);

// Writes the content, filters it, and takes the mark back. Returns false with the last error set on failure; closing
// the file then deletes it.
bool write_minidump(mini_dump_write_dump_t writer, HANDLE file, const dump_source_t& source);

}  // namespace crash
