// The whole dialogue with the user goes through these functions.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace wizard {

// Writes the text unchanged to the console and logs it.
void PrintToConsole(std::wstring text);

// Blocks until a line is entered; returns it without its line end. Hidden input is neither echoed nor logged. If there
// has never been a console, visible input is empty, and hidden input throws exc::runtime_exc_t, because nobody chose an
// empty password. If the user presses Ctrl+C or closes the window, the process ends.
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

// What these functions write to and read from: the Windows console, or a test's stand-in.
class IConsoleDevice {
public:
    virtual ~IConsoleDevice() = default;
    virtual void Write(const std::wstring& text) = 0;

    // Blocks until a line is entered; returns it without its line end. For hidden input, the echo is already off.
    virtual std::wstring ReadLine(bool hidden) = 0;

    // Returns false if nobody can answer: every line is then empty, and no question may be repeated.
    virtual bool IsInteractive() const = 0;
};

// Returns the device in use: the Windows console, unless UseConsoleDevice() has replaced it.
IConsoleDevice& ConsoleDevice();

// Replaces the device; null restores the Windows console. The caller keeps ownership and must restore before destroying
// its device.
void UseConsoleDevice(IConsoleDevice* device);

}  // namespace wizard
