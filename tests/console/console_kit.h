// Ormacon.exe as its user sees it. The test program is the user: it types in the console of both, and reads the screen.
// All texts are UTF-8.
#pragma once

#include <array>

#include <boost/algorithm/string.hpp>

#include "common/encoding/convert.h"
#include "common/logging/log_settings.h"
#include "common/platform/owned.h"
#include "tests/logging/log_test_kit.h"

namespace console_test {

namespace fs = std::filesystem;
using test_support::FileText;
using Dialogue = std::vector<std::pair<std::string, std::string>>;  // what is printed up to a question, and the answer

inline SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
constexpr DWORD all_rights = GENERIC_READ | GENERIC_WRITE, all_sharing = FILE_SHARE_READ | FILE_SHARE_WRITE;

inline platform::unique_file Open(const fs::path& name, DWORD how = OPEN_EXISTING) {
    return platform::unique_file(CreateFileW(name.c_str(), all_rights, all_sharing, &inheritable, how, 0, nullptr));
}

// As long as it exists, the console shows a fresh screen.
class CConsole {
public:
    CConsole() {
        SetConsoleScreenBufferSize(screen(), {500, 400});  // some consoles keep to the size of their window
        SetConsoleActiveScreenBuffer(screen());
        // As shells have it: programs may use escape sequences, which ours turns off for itself, and lines are read.
        SetConsoleMode(screen(),
                       ENABLE_PROCESSED_OUTPUT | ENABLE_WRAP_AT_EOL_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
        SetConsoleMode(input(), ENABLE_PROCESSED_INPUT | ENABLE_LINE_INPUT | ENABLE_ECHO_INPUT);
        FlushConsoleInputBuffer(input());
    }
    ~CConsole() { SetConsoleActiveScreenBuffer(usual_screen_.get()); }
    CConsole(const CConsole&) = delete;
    CConsole& operator=(const CConsole&) = delete;

    HANDLE input() const { return input_.get(); }
    HANDLE screen() const { return screen_.get(); }

    void Type(const std::string& text) const {
        std::vector<INPUT_RECORD> keys;
        for (const wchar_t unit : encoding::utf8_to_wide(text)) {
            const WORD key = unit == L'\r' ? VK_RETURN : 0;
            for (const BOOL down : {TRUE, FALSE}) keys.push_back({KEY_EVENT, {{down, 1, key, 0, {unit}, 0}}});
        }
        DWORD typed = 0;
        EXPECT_TRUE(WriteConsoleInputW(input(), keys.data(), static_cast<DWORD>(keys.size()), &typed));
    }

    // The modes of the input and of the screen.
    std::array<DWORD, 2> Modes() const {
        std::array<DWORD, 2> modes{};
        EXPECT_TRUE(GetConsoleMode(input(), &modes[0]) && GetConsoleMode(screen(), &modes[1]));
        return modes;
    }

    // The lines down to the cursor, as far back as the console keeps them; one that it has broken is whole again.
    // Blanks at their ends are left out, except before the cursor.
    std::string Shown() const {
        CONSOLE_SCREEN_BUFFER_INFO state{};
        EXPECT_TRUE(GetConsoleScreenBufferInfo(screen(), &state));
        const auto [x, last] = state.dwCursorPosition;
        std::wstring shown;
        for (SHORT y = 0; y <= last; ++y) {
            std::wstring row(static_cast<std::size_t>(y < last ? state.dwSize.X : x), L' ');
            DWORD read = 0;
            ReadConsoleOutputCharacterW(screen(), row.data(), static_cast<DWORD>(row.size()), {0, y}, &read);
            const bool goes_on = y == last || row.back() != L' ';
            shown += goes_on ? row : boost::trim_right_copy(row) + L'\n';
        }
        return encoding::wide_to_utf8(shown);
    }

private:
    const BOOL made_ = AllocConsole();  // refused where there is one
    const platform::unique_file usual_screen_ = Open("CONOUT$"), input_ = Open("CONIN$"),
                                screen_{CreateConsoleScreenBuffer(all_rights, all_sharing, &inheritable,
                                                                  CONSOLE_TEXTMODE_BUFFER, nullptr)};
};

// The end of a text: a small console does not keep more.
inline std::string EndOf(const std::string& text, std::size_t size = 1000) {
    return text.substr(text.size() - std::min(text.size(), size));
}

// What the process that had this number last has logged, without time and thread, wherever this machine keeps the logs.
inline std::string LogOf(DWORD process) {
    const std::string id = "> Process Id: " + std::to_string(process) + "\r\n";
    const std::string separator = "> " + std::string(77, '=') + "\r\n";
    const std::string head = "(\\[.{19}\\] <.{6}> )",
                      last_line = head + "Clearing collection of cout multiplexors\\.\r\n";
    std::string log, newest;  // year, month, day, time: another run may be writing to the other files
    for (const auto& file : fs::directory_iterator(logging::log_folder_path(L"RmanPluginLogs"))) {
        if (file.path().extension() != ".log") continue;
        std::string text = FileText(file.path());
        const fs::path archive = file.path().wstring() + L".gz";
        if (text.find(id) == std::string::npos && fs::exists(archive)) text = log_test::read_gzip(archive) + text;
        const std::size_t begin = text.rfind(id);
        if (begin == std::string::npos) continue;
        const std::string stamp = text.substr(begin - 28, 19);
        const std::string when = stamp.substr(6, 5) + stamp.substr(3, 3) + stamp.substr(0, 3) + stamp.substr(11);
        if (when < newest) continue;
        newest = when;
        const std::size_t end = text.find(separator, text.find(separator, begin) + 1);  // of the next header
        log = std::regex_replace(text.substr(begin, text.rfind("\r\n", end) + 2 - begin),
                                 std::regex("\r\n(" + last_line + ")?" + head + "?"), "\n");
    }
    return log;
}

// A run of the program. The streams are input, output and error.
class CProcess {
public:
    CProcess(const fs::path& program, const std::string& options, const std::array<HANDLE, 3>& streams,
             DWORD flags = 0) {
        STARTUPINFOW how{};
        how.cb = sizeof how;
        how.dwFlags = STARTF_USESTDHANDLES;
        how.hStdInput = streams[0], how.hStdOutput = streams[1], how.hStdError = streams[2];
        std::wstring line = L"Ormacon " + encoding::utf8_to_wide(options);
        PROCESS_INFORMATION started{};
        EXPECT_TRUE(CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr, &how,
                                   &started));
        CloseHandle(started.hThread);
        process_.reset(started.hProcess);
    }

    // Returns whether the condition came true before the program's end. The limit is for a machine that has other work
    // to do.
    bool WaitUntil(const std::function<bool()>& condition) const {
        for (int i = 0; i < 60'000 && !condition() && WaitForSingleObject(process_.get(), 2) == WAIT_TIMEOUT;) ++i;
        return condition();
    }

    // Waits for each question and answers it.
    void Answer(const CConsole& console, const Dialogue& dialogue) const {
        for (const auto& [question, answer] : dialogue) {
            if (!WaitUntil([&] { return console.Shown().ends_with(EndOf(question)); })) {
                ADD_FAILURE() << question << "\nis not asked. The screen:\n" << console.Shown();
                TerminateProcess(process_.get(), 1);
                return;
            }
            console.Type(answer + "\r");
        }
    }

    // A thread at CtrlRoutine is how Windows itself reports the event to a program. In a terminal
    // GenerateConsoleCtrlEvent fails under Wine 8 (invalid handle), and under Wine 10 it never returns.
    void Interrupt(DWORD event) const {
        const FARPROC routine = GetProcAddress(GetModuleHandleW(L"kernelbase.dll"), "CtrlRoutine");
        const auto begin = reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(routine));
        void* const argument = reinterpret_cast<void*>(std::uintptr_t{event});
        EXPECT_TRUE(
            platform::unique_handle(CreateRemoteThread(process_.get(), nullptr, 0, begin, argument, 0, nullptr)));
    }

    // Waits for the end, and returns the log. The exit status of every run that reaches its end is 0.
    std::string Finish(const testing::Matcher<DWORD>& expected = DWORD{0}) const {
        DWORD status = STILL_ACTIVE;
        WaitForSingleObject(process_.get(), 120'000);
        GetExitCodeProcess(process_.get(), &status);
        EXPECT_THAT(status, expected);
        return LogOf(GetProcessId(process_.get()));
    }

private:
    platform::unique_handle process_;
};

}  // namespace console_test
