// Everything that the user sees and types goes through here.
#pragma once

#include <string>

namespace wizard {

// Writes the text as it stands to the console and logs "Print to console [%1]".
void PrintToConsole(std::wstring text);

// Reads one line, without its line end; hidden input is not echoed. Logs "Read from console [%1]", with "Hidden data"
// in place of what was hidden. Returns an empty text for an empty line and where there has never been a console. A read
// that fails because the user has pressed Ctrl+C or closed the window does not return: the process ends.
// A visible line of more than 1,024 UTF-16 units comes in several reads; of a hidden one the rest is dropped, so that
// it cannot show up as the answer to the next question.
std::wstring ReadFromConsole(bool hidden = false);

// Before a question is asked again: raises exc::runtime_exc_t "There is no console to read an answer from" where the
// answer would be empty for ever.
void RequireInteractiveConsole();

// A copy in lower case, for comparing yes/no answers.
std::wstring ToLowerText(const std::wstring& text);

}  // namespace wizard
