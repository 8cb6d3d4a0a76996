#include "wizard/console_session.h"

#include <cstdio>
#include <iostream>
#include <mutex>
#include <optional>
#include <streambuf>
#include <utility>

#include <boost/algorithm/string/replace.hpp>

#include "common/crash/handler_registry.h"
#include "common/encoding/convert.h"
#include "common/platform/console.h"
#include "conf_tool/log_component.h"
#include "common/win32.h"

namespace wizard {
namespace {

// Shared with the thread on which the system reports Ctrl+C: echo is never turned off after that report.
struct ConsoleState {
    std::mutex mutex;
    bool cancelled = false;
    bool echo_off = false;
    bool had_console = false;
    // The console's original state, until it is restored.
    std::optional<DWORD> input_mode;
    std::optional<DWORD> output_mode;
    UINT output_code_page = 0;
};

ConsoleState& State() {
    // Never destroyed: a Ctrl+C may come while the process is ending.
    static auto* const state = new ConsoleState;
    return *state;
}

std::optional<DWORD> Mode(DWORD stream) {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(stream), &mode) ? std::optional(mode) : std::nullopt;
}

void SetMode(DWORD stream, DWORD mode) { SetConsoleMode(GetStdHandle(stream), mode); }

void ReadLines(bool echo) {
    const auto current = Mode(STD_INPUT_HANDLE);
    if (!current) return;
    const DWORD mode = *current | ENABLE_LINE_INPUT | ENABLE_PROCESSED_INPUT | ENABLE_ECHO_INPUT;
    SetMode(STD_INPUT_HANDLE, echo ? mode : mode & ~DWORD{ENABLE_ECHO_INPUT});
}

// Returns false if there was nothing to restore.
bool RestoreEcho(ConsoleState& state) {
    if (!std::exchange(state.echo_off, false)) return false;
    ReadLines(true);
    return true;
}

// Otherwise what the shell prints next would follow the prompt on its line. std::cout belongs to another thread.
void EndPromptLine() { platform::write_console(GetStdHandle(STD_OUTPUT_HANDLE), L"\r\n"); }

void RestoreConsole(ConsoleState& state) {
    if (const auto mode = std::exchange(state.input_mode, std::nullopt)) SetMode(STD_INPUT_HANDLE, *mode);
    if (const auto mode = std::exchange(state.output_mode, std::nullopt)) SetMode(STD_OUTPUT_HANDLE, *mode);
    if (const UINT code_page = std::exchange(state.output_code_page, 0)) SetConsoleOutputCP(code_page);
}

// The crashed thread may own the mutex. Nobody else changes the state any more, so no lock is needed.
void RestoreAfterCrash() {
    ConsoleState& state = State();
    const std::unique_lock lock(state.mutex, std::try_to_lock);
    RestoreEcho(state);
    RestoreConsole(state);
}

// Returns whether this was the first call.
bool CancelInput() {
    ConsoleState& state = State();
    const std::lock_guard lock(state.mutex);
    if (RestoreEcho(state)) EndPromptLine();
    RestoreConsole(state);
    return !std::exchange(state.cancelled, true);
}

// Buffers nothing, so that the log's echo appears in the right place between two texts.
class CConsoleBuffer : public std::streambuf {
protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        const std::string lines(text, static_cast<std::size_t>(size));
        platform::write_console(GetStdHandle(STD_OUTPUT_HANDLE),
                                encoding::utf8_to_wide(boost::replace_all_copy(lines, "\n", "\r\n")));
        return size;
    }

    int_type overflow(int_type character) override {
        const char single = traits_type::to_char_type(character);
        if (!traits_type::eq_int_type(character, traits_type::eof())) xsputn(&single, 1);
        return traits_type::not_eof(character);
    }
};

// Makes std::cout reach a console as UTF-16, with CR LF as its line end: the C runtime may lose letters outside ASCII,
// and may take seconds for a long text. Files and pipes get UTF-8 when the stream is flushed. It cannot be undone.
void PrepareStandardOutput() {
    if (platform::is_console(GetStdHandle(STD_OUTPUT_HANDLE))) {
        // Never destroyed: static objects print while the process ends.
        static auto* const buffer = new CConsoleBuffer;
        std::cout.rdbuf(buffer);
    } else {
        // Without a buffer, the C runtime writes to NUL character by character.
        std::setvbuf(stdout, nullptr, _IOFBF, 4096);
    }
}

// The default handler, which ends the process, runs after this one.
BOOL WINAPI OnControlEvent(DWORD) {
    CancelInput();
    return FALSE;
}

}  // namespace

CEchoGuard::CEchoGuard() {
    ConsoleState& state = State();
    const std::lock_guard lock(state.mutex);
    if (state.cancelled) return;
    state.echo_off = true;
    ReadLines(false);
}

CEchoGuard::~CEchoGuard() {
    {
        ConsoleState& state = State();
        const std::lock_guard lock(state.mutex);
        RestoreEcho(state);
    }
    std::cout << "\n" << std::flush;
}

CConsoleSession::CConsoleSession() {
    ConsoleState& state = State();
    const std::lock_guard lock(state.mutex);
    state.input_mode = Mode(STD_INPUT_HANDLE);
    state.had_console = state.input_mode.has_value();
    state.output_mode = Mode(STD_OUTPUT_HANDLE);
    if (state.output_mode) SetMode(STD_OUTPUT_HANDLE, *state.output_mode & ~DWORD{ENABLE_VIRTUAL_TERMINAL_PROCESSING});
    state.output_code_page = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    PrepareStandardOutput();
    SetConsoleCtrlHandler(OnControlEvent, TRUE);
    crash::register_handler(&RestoreAfterCrash);
}

CConsoleSession::~CConsoleSession() {
    SetConsoleCtrlHandler(OnControlEvent, FALSE);
    ConsoleState& state = State();
    const std::lock_guard lock(state.mutex);
    RestoreConsole(state);
}

void PrepareVisibleInput() {
    ConsoleState& state = State();
    const std::lock_guard lock(state.mutex);
    if (!state.cancelled) ReadLines(true);
}

// The read may fail before the system reports Ctrl+C on a thread of its own, and a console that has gone may never
// report anything: either way, what was read must not pass for an empty answer.
void EndProcessUnlessRead(bool succeeded) {
    {
        ConsoleState& state = State();
        const std::lock_guard lock(state.mutex);
        if (!state.cancelled && (succeeded || !state.had_console)) return;
    }
    if (CancelInput()) conf_tool::ormacon_tool.log(logging::level_warning, "Console input was cancelled");
    ExitProcess(static_cast<UINT>(STATUS_CONTROL_C_EXIT));
}

}  // namespace wizard
