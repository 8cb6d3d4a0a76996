#include "common/crash/recorder/dump_writing.h"

#include "common/crash/recorder/folder.h"
#include "common/crash/recorder/minidump_file.h"
#include "common/win32.h"

namespace recorder {
namespace {

wchar_t path[longest_path];

bool form_path(const ntdll_t& functions, const arguments_t& arguments) {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const ULONG64 number = static_cast<ULONG64>(now.dwHighDateTime) << 32 | now.dwLowDateTime;
    return print(functions, path, longest_path, L"%ls\\%ls_%u_%u_%I64u.mdmp", arguments.folder, arguments.base_name,
                 static_cast<unsigned>(arguments.process_id), static_cast<unsigned>(arguments.thread_id), number);
}

crash::mini_dump_write_dump_t find_writer() {
    // From the system folder alone, whatever lies in the dump folder or the current one.
    const HMODULE library = LoadLibraryExW(L"dbghelp.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (library == nullptr) return nullptr;
    return reinterpret_cast<crash::mini_dump_write_dump_t>(
        reinterpret_cast<void*>(GetProcAddress(library, "MiniDumpWriteDump")));
}

bool write(crash::mini_dump_write_dump_t writer, HANDLE file, const arguments_t& arguments) {
    MINIDUMP_EXCEPTION_INFORMATION exception;
    exception.ThreadId = arguments.thread_id;
    exception.ExceptionPointers = reinterpret_cast<EXCEPTION_POINTERS*>(arguments.exception_pointers);
    exception.ClientPointers = TRUE;
    return crash::write_minidump(writer, file,
                                 {arguments.process, arguments.process_id,
                                  arguments.exception_pointers == 0 ? nullptr : &exception, arguments.watching_thread});
}

}  // namespace

crash::recorder_exit_t write_dump(const ntdll_t& functions, const arguments_t& arguments) {
    if (!form_path(functions, arguments)) return crash::recorder_bad_dump_name;
    const crash::mini_dump_write_dump_t writer = find_writer();
    if (writer == nullptr) return crash::recorder_unspecified_failure;
    const HANDLE file = crash::create_minidump(path);
    if (file == INVALID_HANDLE_VALUE) return crash::recorder_no_dump_file;
    const bool written = write(writer, file, arguments);
    CloseHandle(file);
    return written ? crash::recorder_success : crash::recorder_no_dump_content;
}

}  // namespace recorder
