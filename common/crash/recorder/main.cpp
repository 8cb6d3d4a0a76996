// Writes a minidump of the process that started it, from outside: the crashed process may no longer be able to.
#include "common/crash/recorder/ntdll.h"
#include "common/crash/shared/minidump_file.h"
#include "common/crash/shared/retention.h"
#include "common/platform/module.h"
#include "common/win32.h"

namespace recorder {
namespace {

constexpr std::size_t command_line_size = 32768;  // the system's limit, with the terminating null

// Longer paths are refused. The system's own limit does not apply to a folder that begins with "\\?\".
constexpr std::size_t path_size = 4096;

// The command line: name, process handle, process id, thread id, address of the EXCEPTION_POINTERS in that process (0:
// none), id of the thread that must not be suspended (0: none), dump folder, base name, maximum of dumps. Numbers are
// decimal, texts are in quotes.
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

// Without a runtime there is no support for large frames.
wchar_t command_line[command_line_size];
wchar_t pattern[path_size];
wchar_t path[path_size];

constexpr unsigned argument_count = 9;

bool is_blank(wchar_t character) { return character == L' ' || character == L'\t'; }

// Terminates the next argument and moves the position past it. Returns null at the end of the line.
wchar_t* next_argument(wchar_t*& position) {
    while (is_blank(*position)) ++position;
    if (*position == L'\0') return nullptr;
    const bool quoted = *position == L'"';
    if (quoted) ++position;
    wchar_t* const begin = position;
    while (*position != L'\0' && (quoted ? *position != L'"' : !is_blank(*position))) ++position;
    if (*position != L'\0') *position++ = L'\0';
    return begin;
}

bool read_number(const wchar_t* text, ULONG64 max, ULONG64& number) {
    number = 0;
    if (*text == L'\0') return false;
    for (; *text != L'\0'; ++text) {
        if (*text < L'0' || *text > L'9') return false;
        const auto digit = static_cast<unsigned>(*text - L'0');
        if (number > (max - digit) / 10) return false;
        number = number * 10 + digit;
    }
    return true;
}

bool is_file_name(const wchar_t* text) {
    if (*text == L'\0') return false;
    for (; *text != L'\0'; ++text) {
        if (*text == L'\\' || *text == L'/' || *text == L':') return false;
    }
    return true;
}

bool read(wchar_t* const (&texts)[argument_count], arguments_t& arguments) {
    constexpr ULONG64 max_dword = 0xffffffff;
    arguments.folder = texts[6];
    arguments.base_name = texts[7];
    return read_number(texts[1], ~0ULL, arguments.process) && read_number(texts[2], max_dword, arguments.process_id) &&
           read_number(texts[3], max_dword, arguments.thread_id) &&
           read_number(texts[4], ~0ULL, arguments.exception_pointers) &&
           read_number(texts[5], max_dword, arguments.watching_thread) &&
           read_number(texts[8], 10000, arguments.max_dumps) && arguments.max_dumps != 0 &&
           *arguments.folder != L'\0' && is_file_name(arguments.base_name) && arguments.process_id != 0 &&
           GetProcessId(reinterpret_cast<HANDLE>(arguments.process)) == arguments.process_id;
}

// They point into the command line, which it splits.
crash::recorder_exit_t read_arguments(wchar_t* line, arguments_t& arguments) {
    wchar_t* texts[argument_count];
    unsigned count = 0;
    while (wchar_t* const text = next_argument(line)) {
        if (count == argument_count) return crash::recorder_bad_argument_count;
        texts[count++] = text;
    }
    if (count < argument_count) return crash::recorder_bad_argument_count;
    return read(texts, arguments) ? crash::recorder_success : crash::recorder_bad_arguments;
}

// The crashed program usually keeps it open.
bool create_folder(const wchar_t* folder) {
    const DWORD attributes = GetFileAttributesW(folder);
    if (attributes == INVALID_FILE_ATTRIBUTES) return CreateDirectoryW(folder, nullptr);
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool make_room(const ntdll_t& functions, const arguments_t& arguments) {
    const auto form = [&](wchar_t* target, const wchar_t* name) {
        return print(functions, target, path_size, L"%ls\\%ls", arguments.folder, name);
    };
    if (!form(pattern, crash::dump_pattern)) return false;
    const auto delete_dump = [&](const wchar_t* name) { return form(path, name) && DeleteFileW(path); };
    return crash::delete_old_dumps(pattern, arguments.max_dumps, delete_dump) < arguments.max_dumps;
}

bool form_path(const ntdll_t& functions, const arguments_t& arguments) {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const ULONG64 number = static_cast<ULONG64>(now.dwHighDateTime) << 32 | now.dwLowDateTime;
    return print(functions, path, path_size, L"%ls\\%ls_%u_%u_%I64u.mdmp", arguments.folder, arguments.base_name,
                 static_cast<unsigned>(arguments.process_id), static_cast<unsigned>(arguments.thread_id), number);
}

crash::recorder_exit_t write_dump(const ntdll_t& functions, const arguments_t& arguments) {
    if (!form_path(functions, arguments)) return crash::recorder_bad_dump_name;
    const HMODULE library = LoadLibraryExW(L"dbghelp.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    const auto writer = platform::find_function<crash::mini_dump_write_dump_t>(library, "MiniDumpWriteDump");
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
