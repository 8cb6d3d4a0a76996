#include "wizard/echo_guard.h"

#include <iostream>
#include <mutex>
#include <optional>
#include <utility>

#include "common/crash/handler_registry.h"
#include "common/exc/raise.h"
#include "wizard/console_stream.h"
#include "common/win32.h"

namespace wizard {
namespace {

// Shared with the thread on which the system reports Ctrl+C: echo is never turned off after that report.
struct ConsoleState {
    std::mutex mutex;
    bool cancelled = false;
    bool echo_off = false;
    // As the console was found, until it is given back so.
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
    const auto present = Mode(STD_INPUT_HANDLE);
    if (!present) return;
    const DWORD mode = *present | ENABLE_LINE_INPUT | ENABLE_PROCESSED_INPUT | ENABLE_ECHO_INPUT;
    SetMode(STD_INPUT_HANDLE, echo ? mode : mode & ~DWORD{ENABLE_ECHO_INPUT});
}

// False when there was nothing to restore.
bool RestoreEcho(ConsoleState& state) {
    if (!std::exchange(state.echo_off, false)) return false;
    ReadLines(true);
    return true;
}

// What the shell prints next would else stand behind the prompt. The stream belongs to another thread.
void EndPromptLine() {
    DWORD written = 0;
    WriteConsoleW(GetStdHandle(STD_OUTPUT_HANDLE), L"\r\n", 2, &written, nullptr);
}

void GiveBackAsFound(ConsoleState& state) {
    if (const auto mode = std::exchange(state.input_mode, std::nullopt)) SetMode(STD_INPUT_HANDLE, *mode);
    if (const auto mode = std::exchange(state.output_mode, std::nullopt)) SetMode(STD_OUTPUT_HANDLE, *mode);
    if (const UINT code_page = std::exchange(state.output_code_page, 0)) SetConsoleOutputCP(code_page);
}

// The crashed thread may hold the mutex; it stands still, so that there is nobody to be kept out.
void RestoreAfterCrash() {
    ConsoleState& state = State();
    const std::unique_lock lock(state.mutex, std::try_to_lock);
    RestoreEcho(state);
    GiveBackAsFound(state);
}

// The default handler, which ends the process, runs after this one.
BOOL WINAPI OnControlEvent(DWORD) {
    ConsoleState& state = State();
    const std::lock_guard lock(state.mutex);
    state.cancelled = true;
    if (RestoreEcho(state)) EndPromptLine();
    GiveBackAsFound(state);
    return FALSE;
}

}  // namespace

CEchoGuard::CEchoGuard() {
    ConsoleState& state = State();
    const std::lock_guard lock(state.mutex);
    if (state.cancelled) exc::raise<exc::term_exc_t>("Console input was cancelled");
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
    state.output_mode = Mode(STD_OUTPUT_HANDLE);
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
    GiveBackAsFound(state);
}

void PrepareVisibleInput() {
    ConsoleState& state = State();
    const std::lock_guard lock(state.mutex);
    if (!state.cancelled) ReadLines(true);
}

bool IsInputCancelled() {
    ConsoleState& state = State();
    const std::lock_guard lock(state.mutex);
    return state.cancelled;
}

}  // namespace wizard
