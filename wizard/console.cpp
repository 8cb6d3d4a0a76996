#include "wizard/console.h"

#include <algorithm>
#include <cwctype>
#include <optional>
#include <vector>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "conf_tool/log_component.h"
#include "wizard/console_device.h"
#include "wizard/console_session.h"
#include "wizard/shown_text.h"

namespace wizard {

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

std::wstring ToLowerText(const std::wstring& text) {
    std::wstring lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](wchar_t unit) { return static_cast<wchar_t>(std::towlower(unit)); });
    return lower;
}

}  // namespace wizard
