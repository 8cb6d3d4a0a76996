#include "wizard/prompts.h"

#include <vector>

#include "common/exc/format_message.h"
#include "common/text/convert.h"
#include "wizard/console.h"

namespace wizard {

std::wstring FormatPrompt(std::string_view format, std::initializer_list<std::wstring> arguments) {
    std::vector<std::string> narrow;
    for (const std::wstring& argument : arguments) narrow.push_back(text::wide_to_utf8(argument));
    return text::utf8_to_wide(exc::format_message(format, narrow));
}

std::wstring BracketedDefault(const std::wstring& value) { return value.empty() ? L"" : L" [" + value + L"]"; }

std::wstring Ask(const std::wstring& prompt, const std::wstring& default_answer) {
    PrintToConsole(prompt);
    std::wstring answer = ReadFromConsole();
    return answer.empty() ? default_answer : answer;
}

}  // namespace wizard
