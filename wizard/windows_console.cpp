#include "wizard/windows_console.h"

#include <array>

#include "common/exc/raise.h"
#include "common/text/wipe.h"
#include "wizard/echo_guard.h"
#include "common/win32.h"

namespace wizard {
namespace {

constexpr DWORD end_of_process_wait_ms = 10000;

class CReadBuffer {
public:
    ~CReadBuffer() { SecureZeroMemory(units_.data(), sizeof units_); }
    wchar_t* data() { return units_.data(); }
    DWORD size() const { return static_cast<DWORD>(units_.size()); }

private:
    std::array<wchar_t, 1024> units_{};
};

// A cancelled read comes back as a failed one or as one of no characters at all, not even a line end, while another
// thread is ending the process. It must never look like an empty answer.
bool WasCancelled(BOOL succeeded, DWORD error, DWORD count) {
    if (IsInputCancelled()) return true;
    return succeeded ? count == 0 : error == ERROR_OPERATION_ABORTED;
}

[[noreturn]] void AwaitEndOfProcess() {
    Sleep(end_of_process_wait_ms);
    exc::raise<exc::term_exc_t>("Console input was cancelled");
}

// The line is built where it is returned: it may be a password, and each copy would have to be wiped.
std::wstring ReadUnits(CReadBuffer& buffer) {
    DWORD count = 0;
    const BOOL succeeded = ReadConsoleW(GetStdHandle(STD_INPUT_HANDLE), buffer.data(), buffer.size(), &count, nullptr);
    if (WasCancelled(succeeded, GetLastError(), count)) AwaitEndOfProcess();
    return std::wstring(buffer.data(), count);
}

// What is left of a hidden line must not become the answer to a visible question.
void DropRestOfLine(CReadBuffer& buffer) {
    for (bool ended = false; !ended;) {
        std::wstring rest = ReadUnits(buffer);
        ended = rest.empty() || rest.back() == L'\n';
        text::wipe(rest);
    }
}

IConsoleDevice*& DeviceInUse() {
    static CWindowsConsole windows_console;
    static IConsoleDevice* device = &windows_console;
    if (device == nullptr) device = &windows_console;
    return device;
}

}  // namespace

void CWindowsConsole::Write(const std::wstring& text) {
    DWORD written = 0;
    WriteConsoleW(GetStdHandle(STD_OUTPUT_HANDLE), text.c_str(), static_cast<DWORD>(text.size()), &written, nullptr);
}

std::wstring CWindowsConsole::ReadLine(bool hidden) {
    if (!hidden) PrepareVisibleInput();
    CReadBuffer buffer;
    std::wstring line = ReadUnits(buffer);
    const std::size_t end = line.find(L"\r\n");
    if (end != std::wstring::npos) {
        line.resize(end);
    } else if (hidden && line.size() == buffer.size()) {
        if (line.back() == L'\r') line.pop_back();
        DropRestOfLine(buffer);
    }
    return line;
}

bool CWindowsConsole::IsInteractive() const {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) != FALSE;
}

IConsoleDevice& ConsoleDevice() { return *DeviceInUse(); }

void UseConsoleDevice(IConsoleDevice* device) { DeviceInUse() = device; }

}  // namespace wizard
