// Runs a program several times in this console, as a command shell does, and reports after each run whether the
// program ended and whether the console's modes are as they were. Then it waits: what is typed now is seen, or not.
//
//     break_sender break|wait RUNS REPORT PROGRAM ARGUMENTS...
//
// The reports go to the file REPORT, since a busy console can lose lines that have scrolled off the screen. In the
// arguments RUN is replaced by the number of the run, which makes each prompt different.
// With "break" each run is ended by Ctrl+Break as soon as the program has turned the echo off: in every second run
// only after some characters were typed, and each time a little later than the last.
#include <cstdio>
#include <fstream>
#include <string>

#include "common/win32.h"

namespace {

constexpr DWORD limit_ms = 60000;
constexpr DWORD input_modes = ENABLE_ECHO_INPUT | ENABLE_LINE_INPUT | ENABLE_PROCESSED_INPUT;
// Shells let programs use escape sequences; ours turns that off for itself.
constexpr DWORD output_modes = ENABLE_PROCESSED_OUTPUT | ENABLE_WRAP_AT_EOL_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING;

BOOL WINAPI StayAlive(DWORD event) { return event != CTRL_CLOSE_EVENT; }

// Whether the console's input (or output) has these modes.
bool has_modes(DWORD handle, DWORD wanted) {
    DWORD modes = 0;
    return GetConsoleMode(GetStdHandle(handle), &modes) && (modes & wanted) == wanted;
}

HANDLE start(int count, wchar_t** words, int run) {
    std::wstring line;
    for (int i = 0; i < count; ++i) line += std::wstring(i == 0 ? L"\"" : L" \"") + words[i] + L"\"";
    const std::size_t at = line.rfind(L"RUN");
    if (at != line.npos) line.replace(at, 3, std::to_wstring(run));
    STARTUPINFOW how{};
    how.cb = sizeof how;
    PROCESS_INFORMATION started{};
    CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &how, &started);
    return started.hProcess;
}

// A thread at CtrlRoutine is how Windows itself reports the event to a program. In a terminal GenerateConsoleCtrlEvent
// fails under Wine 8 (invalid handle), and under Wine 10 it never returns.
void press_break_at_prompt(HANDLE program, int run) {
    while (has_modes(STD_INPUT_HANDLE, input_modes) && WaitForSingleObject(program, 0) == WAIT_TIMEOUT) Sleep(1);
    const INPUT_RECORD key{KEY_EVENT, {{TRUE, 3, 'X', 0, {L'x'}, 0}}};
    DWORD written = 0;
    if (run % 2 == 0) WriteConsoleInputW(GetStdHandle(STD_INPUT_HANDLE), &key, 1, &written);
    Sleep(static_cast<DWORD>(run % 50));
    const FARPROC routine = GetProcAddress(GetModuleHandleW(L"kernelbase.dll"), "CtrlRoutine");
    const auto start_address = reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(routine));
    CreateRemoteThread(program, nullptr, 0, start_address, reinterpret_cast<void*>(CTRL_BREAK_EVENT), 0, nullptr);
}

}  // namespace

extern "C" int wmain(int argc, wchar_t** argv) {
    if (argc < 5) return 2;
    SetConsoleCtrlHandler(StayAlive, TRUE);
    SetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), output_modes);
    // Wine's console starts the desktop at the first key, and hangs when Ctrl+C comes in that moment: start it now.
    VkKeyScanW(L'x');
    const int runs = std::stoi(argv[2]);
    for (int run = 1; run <= runs; ++run) {
        const HANDLE program = start(argc - 4, argv + 4, run);
        if (argv[1] == std::wstring(L"break")) press_break_at_prompt(program, run);
        const bool ended = WaitForSingleObject(program, limit_ms) == WAIT_OBJECT_0;
        std::puts("");
        std::fflush(stdout);
        std::ofstream(argv[3], std::ios::app)
            << "run " << run << (ended ? ": ended" : ": still running")
            << (has_modes(STD_INPUT_HANDLE, input_modes) ? ", echo on" : ", echo off")
            << (has_modes(STD_OUTPUT_HANDLE, output_modes) ? "" : ", output modes lost") << std::endl;
    }
    Sleep(limit_ms);
    return 0;
}
