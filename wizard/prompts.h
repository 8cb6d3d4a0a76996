#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace wizard {

// The positional formatter for what the user sees.
std::wstring FormatPrompt(std::string_view format, std::initializer_list<std::wstring> arguments);

// " [value]", or nothing for an empty value.
std::wstring BracketedDefault(const std::wstring& value);

// Shows the prompt and reads the answer; an empty answer is the default.
std::wstring Ask(const std::wstring& prompt, const std::wstring& default_answer);

}  // namespace wizard
