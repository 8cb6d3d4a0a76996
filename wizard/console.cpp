#include "wizard/console.h"

#include <optional>
#include <vector>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/console.h"
#include "common/platform/wipe.h"
#include "conf_tool/log_component.h"
#include "wizard/console_session.h"
#include "wizard/shown_text.h"
#include "common/win32.h"

namespace wizard {
namespace {

constexpr DWORD max_units = 1024;  // of one read

// The line is built in the returned object, whose owner wipes its whole capacity: it may be a password.
std::wstring ReadUnits() {
    std::wstring units(max_units, L'\0');
    DWORD count = 0;
    const BOOL succeeded = ReadConsoleW(GetStdHandle(STD_INPUT_HANDLE), units.data(), max_units, &count, nullptr);
    EndProcessUnlessRead(succeeded && count > 0);  // even an empty line has its line end
    units.resize(count);
    return units;
}

// The rest of a hidden line must not become the answer to a visible question.
void DropRestOfLine() {
    for (bool ended = false; !ended;) {
        std::wstring rest = ReadUnits();
        ended = rest.empty() || rest.back() == L'\n';
        platform::wipe(rest);
    }
}

// Failures to write are not reported.
class CWindowsConsole : public IConsoleDevice {
public:
    void Write(const std::wstring& text) override { platform::write_console(GetStdHandle(STD_OUTPUT_HANDLE), text); }

    std::wstring ReadLine(bool hidden) override {
        if (!hidden) PrepareVisibleInput();
        std::wstring line = ReadUnits();
        const std::size_t end = line.find(L"\r\n");
        if (end != std::wstring::npos) {
            line.resize(end);
        } else if (hidden && line.size() == max_units) {
            if (line.back() == L'\r') line.pop_back();
            DropRestOfLine();
        }
        return line;
    }

    bool IsInteractive() const override { return platform::is_console(GetStdHandle(STD_INPUT_HANDLE)); }
};

IConsoleDevice*& StandIn() {
    static IConsoleDevice* device = nullptr;
    return device;
}

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the caller moves its text
void PrintToConsole(std::wstring text) {
    ConsoleDevice().Write(text);
    conf_tool::ormacon_tool.info(exc::format_message("Print to console [%1]", encoding::wide_to_utf8(text)));
}

std::wstring ReadFromConsole(bool hidden) {
    if (hidden && !ConsoleDevice().IsInteractive()) exc::raise("There is no console to read an answer from");
    std::optional<CEchoGuard> no_echo;
    if (hidden) no_echo.emplace();
    std::wstring line = ConsoleDevice().ReadLine(hidden);
    conf_tool::ormacon_tool.info(
        exc::format_message("Read from console [%1]", hidden ? "Hidden data" : encoding::wide_to_utf8(line)));
    return line;
}

std::wstring FormatPrompt(std::string_view format, std::initializer_list<std::wstring> arguments) {
    std::vector<std::string> narrow;
    for (const std::wstring& argument : arguments) narrow.push_back(encoding::wide_to_utf8(ShownValue(argument)));
    return encoding::utf8_to_wide(exc::format_message(format, narrow));
}

std::wstring BracketedDefault(const std::wstring& value) { return value.empty() ? L"" : L" [" + value + L"]"; }

std::wstring Ask(const std::wstring& prompt, const std::wstring& default_answer) {
    PrintToConsole(prompt);
    std::wstring answer = ReadFromConsole();
    return answer.empty() ? default_answer : answer;
}

IConsoleDevice& ConsoleDevice() {
    static CWindowsConsole windows_console;
    if (StandIn() == nullptr) return windows_console;
    return *StandIn();
}

void UseConsoleDevice(IConsoleDevice* device) { StandIn() = device; }

}  // namespace wizard
