#include "wizard/console.h"

#include <algorithm>
#include <cwctype>
#include <optional>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/component.h"
#include "common/text/convert.h"
#include "wizard/console_device.h"
#include "wizard/console_session.h"

namespace wizard {

// NOLINTNEXTLINE(performance-unnecessary-value-param): the caller moves its text
void PrintToConsole(std::wstring text) {
    ConsoleDevice().Write(text);
    logging::ormacon_tool.info(exc::format_message("Print to console [%1]", text::wide_to_utf8(text)));
}

std::wstring ReadFromConsole(bool hidden) {
    std::optional<CEchoGuard> no_echo;
    if (hidden) no_echo.emplace();
    std::wstring line = ConsoleDevice().ReadLine(hidden);
    logging::ormacon_tool.info(
        exc::format_message("Read from console [%1]", hidden ? "Hidden data" : text::wide_to_utf8(line)));
    return line;
}

void RequireInteractiveConsole() {
    if (!ConsoleDevice().IsInteractive()) exc::raise("There is no console to read an answer from");
}

std::wstring ToLowerText(const std::wstring& text) {
    std::wstring lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](wchar_t unit) { return static_cast<wchar_t>(std::towlower(unit)); });
    return lower;
}

}  // namespace wizard
