// The whole dialogue with the user goes through these functions.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace wizard {

// Writes the text unchanged to the console and logs "Print to console [%1]".
void PrintToConsole(std::wstring text);

// Blocks until a line is entered; returns it without its line end. Hidden input is not echoed. Logs "Read from console
// [%1]", with "Hidden data" in place of hidden input. Returns an empty text for an empty line. If there has never been
// a console, visible input is empty, and hidden input throws exc::runtime_exc_t "There is no console to read an answer
// from", because nobody chose an empty password. If the user presses Ctrl+C or closes the window, the process ends.
//
// Of a line of more than 1,024 UTF-16 units, line end included, only the beginning is returned. The rest of a visible
// line is returned by the next calls. The rest of a hidden line is dropped, so that it cannot answer the next question.
std::wstring ReadFromConsole(bool hidden = false);

// The positional formatter for prompts. The arguments are shown as ShownValue() returns them.
std::wstring FormatPrompt(std::string_view format, std::initializer_list<std::wstring> arguments);

// Returns " [value]", or an empty text for an empty value.
std::wstring BracketedDefault(const std::wstring& value);

// Shows the prompt and returns the answer, or the default if the answer is empty.
std::wstring Ask(const std::wstring& prompt, const std::wstring& default_answer);

// Returns a copy in lower case, for comparing yes/no answers.
std::wstring ToLowerText(const std::wstring& text);

}  // namespace wizard
