#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace wizard {

// The positional formatter for prompts.
std::wstring FormatPrompt(std::string_view format, std::initializer_list<std::wstring> arguments);

// Returns " [value]", or an empty text for an empty value.
std::wstring BracketedDefault(const std::wstring& value);

// Shows the prompt and returns the answer, or the default if the answer is empty.
std::wstring Ask(const std::wstring& prompt, const std::wstring& default_answer);

}  // namespace wizard
