#pragma once

#include "wizard/console_device.h"

namespace wizard {

// The console that the process is attached to, through its wide-character interface. Failing console calls are not
// reported: without a console nothing is written and every answer is empty.
class CWindowsConsole : public IConsoleDevice {
public:
    void Write(const std::wstring& text) override;
    std::wstring ReadLine(bool hidden) override;
    bool IsInteractive() const override;
};

}  // namespace wizard
