// What the console functions write to and read from: the Windows console, or a stand-in that plays a dialogue.
#pragma once

#include <string>

namespace wizard {

class IConsoleDevice {
public:
    virtual ~IConsoleDevice() = default;
    virtual void Write(const std::wstring& text) = 0;

    // Returns one line without its line end. For a hidden one the echo is off already.
    virtual std::wstring ReadLine(bool hidden) = 0;

    // False where nobody can answer: every line is empty then, and a question must not be repeated.
    virtual bool IsInteractive() const = 0;
};

// The device in use; the Windows console unless another one was put in its place.
IConsoleDevice& ConsoleDevice();

// Puts the device in place, null for the Windows console. The caller keeps it and takes it out before it ends.
void UseConsoleDevice(IConsoleDevice* device);

}  // namespace wizard
