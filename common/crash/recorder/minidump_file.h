// A minidump file, from its creation until it may be kept.
//
// What the system writes into it holds what the user typed until it has been filtered. So long the file is marked to
// be deleted when it is closed: nothing stays behind, however the writing program ends.
#pragma once

#include "common/win32.h"

#include <dbghelp.h>

namespace crash {

using mini_dump_write_dump_t = decltype(&MiniDumpWriteDump);

struct dump_source_t {
    HANDLE process;
    DWORD process_id;
    MINIDUMP_EXCEPTION_INFORMATION* exception;  // null: none
    DWORD watching_thread;                      // left out: it runs on while the others are stopped; 0: none
};

// The file must not exist. INVALID_HANDLE_VALUE with the last error set on failure.
HANDLE create_minidump(const wchar_t* path);

// Writes the content, filters it, and lets the file stay. False with the last error set on failure; closing the file
// then deletes it.
bool write_minidump(mini_dump_write_dump_t writer, HANDLE file, const dump_source_t& source);

}  // namespace crash
