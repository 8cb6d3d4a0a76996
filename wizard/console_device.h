// What the console functions write to and read from: the Windows console, or a test's stand-in.
#pragma once

#include <string>

namespace wizard {

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
