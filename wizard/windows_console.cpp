#include <array>

#include "common/platform/console.h"
#include "common/platform/wipe.h"
#include "wizard/console_device.h"
#include "wizard/console_session.h"
#include "common/win32.h"

namespace wizard {
namespace {

class CReadBuffer {
public:
    ~CReadBuffer() { SecureZeroMemory(units_.data(), sizeof units_); }
    wchar_t* data() { return units_.data(); }
    DWORD size() const { return static_cast<DWORD>(units_.size()); }

private:
    std::array<wchar_t, 1024> units_{};
};

// The line is built in the returned object: it may be a password, and each copy would have to be wiped.
std::wstring ReadUnits(CReadBuffer& buffer) {
    DWORD count = 0;
    const BOOL succeeded = ReadConsoleW(GetStdHandle(STD_INPUT_HANDLE), buffer.data(), buffer.size(), &count, nullptr);
    EndProcessUnlessRead(succeeded && count > 0);  // even an empty line has its line end
    return std::wstring(buffer.data(), count);
}

// The rest of a hidden line must not become the answer to a visible question.
void DropRestOfLine(CReadBuffer& buffer) {
    for (bool ended = false; !ended;) {
        std::wstring rest = ReadUnits(buffer);
        ended = rest.empty() || rest.back() == L'\n';
        platform::wipe(rest);
    }
}

// Failures to write are not reported.
class CWindowsConsole : public IConsoleDevice {
public:
    void Write(const std::wstring& text) override { platform::write_console(GetStdHandle(STD_OUTPUT_HANDLE), text); }
    std::wstring ReadLine(bool hidden) override;
    bool IsInteractive() const override { return platform::is_console(GetStdHandle(STD_INPUT_HANDLE)); }
};

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

IConsoleDevice*& DeviceInUse() {
    static CWindowsConsole windows_console;
    static IConsoleDevice* device = &windows_console;
    if (device == nullptr) device = &windows_console;
    return device;
}

}  // namespace

IConsoleDevice& ConsoleDevice() { return *DeviceInUse(); }

void UseConsoleDevice(IConsoleDevice* device) { DeviceInUse() = device; }

}  // namespace wizard
