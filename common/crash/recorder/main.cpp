// Writes a minidump of the process that started it, from outside: the crashed process may no longer be able to.
#include "common/crash/recorder/arguments.h"
#include "common/crash/recorder/ntdll.h"
#include "common/crash/shared/minidump_file.h"
#include "common/crash/shared/retention.h"
#include "common/win32.h"

namespace recorder {
namespace {

constexpr std::size_t command_line_size = 32768;  // the system's limit, with the terminating null

// Longer paths are refused. The system's own limit does not apply to a folder that begins with "\\?\".
constexpr std::size_t path_size = 4096;

// Without a runtime there is no support for large frames.
wchar_t command_line[command_line_size];
wchar_t pattern[path_size];
wchar_t path[path_size];

// The crashed program usually keeps it open.
bool create_folder(const wchar_t* folder) {
    const DWORD attributes = GetFileAttributesW(folder);
    if (attributes == INVALID_FILE_ATTRIBUTES) return CreateDirectoryW(folder, nullptr);
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool make_room(const ntdll_t& functions, const arguments_t& arguments) {
    if (!print(functions, pattern, path_size, L"%ls\\%ls", arguments.folder, crash::dump_pattern)) return false;
    const auto delete_dump = [&](const wchar_t* name) {
        return print(functions, path, path_size, L"%ls\\%ls", arguments.folder, name) && DeleteFileW(path);
    };
    return crash::delete_old_dumps(pattern, arguments.max_dumps, delete_dump) < arguments.max_dumps;
}

bool form_path(const ntdll_t& functions, const arguments_t& arguments) {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const ULONG64 number = static_cast<ULONG64>(now.dwHighDateTime) << 32 | now.dwLowDateTime;
    return print(functions, path, path_size, L"%ls\\%ls_%u_%u_%I64u.mdmp", arguments.folder, arguments.base_name,
                 static_cast<unsigned>(arguments.process_id), static_cast<unsigned>(arguments.thread_id), number);
}

crash::mini_dump_write_dump_t find_writer() {
    const HMODULE library = LoadLibraryExW(L"dbghelp.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (library == nullptr) return nullptr;
    return reinterpret_cast<crash::mini_dump_write_dump_t>(
        reinterpret_cast<void*>(GetProcAddress(library, "MiniDumpWriteDump")));
}

crash::recorder_exit_t write_dump(const ntdll_t& functions, const arguments_t& arguments) {
    if (!form_path(functions, arguments)) return crash::recorder_bad_dump_name;
    const crash::mini_dump_write_dump_t writer = find_writer();
    if (writer == nullptr) return crash::recorder_unspecified_failure;
    const HANDLE file = crash::create_minidump(path);
    if (file == INVALID_HANDLE_VALUE) return crash::recorder_no_dump_file;
    MINIDUMP_EXCEPTION_INFORMATION exception;
    exception.ThreadId = static_cast<DWORD>(arguments.thread_id);
    exception.ExceptionPointers = reinterpret_cast<EXCEPTION_POINTERS*>(arguments.exception_pointers);
    exception.ClientPointers = TRUE;
    const bool written = crash::write_minidump(
        writer, file,
        {reinterpret_cast<HANDLE>(arguments.process), static_cast<DWORD>(arguments.process_id),
         arguments.exception_pointers == 0 ? nullptr : &exception, static_cast<DWORD>(arguments.watching_thread)});
    CloseHandle(file);
    return written ? crash::recorder_success : crash::recorder_no_dump_content;
}

crash::recorder_exit_t run() {
    ntdll_t functions;
    crash::recorder_exit_t result = find_ntdll(GetModuleHandleW(L"ntdll.dll"), functions);
    if (result != crash::recorder_success) return result;

    arguments_t arguments;
    functions.memset(&arguments, 0, sizeof arguments);
    lstrcpynW(command_line, GetCommandLineW(), command_line_size);
    result = read_arguments(command_line, arguments);
    if (result != crash::recorder_success) return result;

    if (!create_folder(arguments.folder)) return crash::recorder_no_folder;
    if (!make_room(functions, arguments)) return crash::recorder_old_dumps_stay;
    return write_dump(functions, arguments);
}

}  // namespace
}  // namespace recorder

extern "C" void RecorderMain() {
    // The libraries that dbghelp.dll needs come from the system's folder as well.
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    ExitProcess(recorder::run());
}
