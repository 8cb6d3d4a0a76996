// Writes a minidump of the process that started it, from outside: the crashed process may no longer be able to.
#include "common/crash/recorder/arguments.h"
#include "common/crash/recorder/dump_writing.h"
#include "common/crash/recorder/folder.h"
#include "common/crash/recorder/ntdll.h"
#include "common/crash/recorder/stack_guard.h"
#include "common/win32.h"

namespace recorder {
namespace {

constexpr std::size_t longest_command_line = 32768;  // the system's limit, with the terminating null

wchar_t command_line[longest_command_line];

HANDLE crashed_process = nullptr;

// Writing a dump suspends the crashed process; when the writing itself crashes, nobody else could let it end.
LONG WINAPI on_fault(EXCEPTION_POINTERS*) {
    using resume_t = LONG(NTAPI*)(HANDLE process);
    const auto resume = reinterpret_cast<resume_t>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtResumeProcess")));
    if (resume != nullptr && crashed_process != nullptr) resume(crashed_process);
    ExitProcess(crash::recorder_unspecified_failure);
}

// A frame of its own, which begins when its guard is chosen.
[[gnu::noinline]] crash::recorder_exit_t run() {
    ntdll_t functions;
    crash::recorder_exit_t result = find_ntdll(GetModuleHandleW(L"ntdll.dll"), functions);
    if (result != crash::recorder_success) return result;

    arguments_t arguments;
    functions.memset(&arguments, 0, sizeof arguments);
    lstrcpynW(command_line, GetCommandLineW(), longest_command_line);
    result = read_arguments(command_line, arguments);
    if (result != crash::recorder_success) return result;
    crashed_process = arguments.process;

    if (!create_folder(arguments.folder)) return crash::recorder_no_folder;
    if (!delete_old_dumps(functions, arguments.folder, arguments.most_dumps)) return crash::recorder_old_dumps_stay;
    return write_dump(functions, arguments);
}

}  // namespace
}  // namespace recorder

extern "C" void RecorderMain() {
    recorder::choose_stack_guard();
    // Its file lies in the dump folder: nothing may be loaded from there, whoever asks for it.
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(&recorder::on_fault);
    ExitProcess(recorder::run());
}
