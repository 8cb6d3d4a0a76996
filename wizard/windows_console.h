#pragma once

#include "wizard/console_device.h"

namespace wizard {

// The console of the process, through its wide-character interface. Failures to write are not reported. If there has
// never been a console, every answer is empty.
class CWindowsConsole : public IConsoleDevice {
public:
    void Write(const std::wstring& text) override;
    std::wstring ReadLine(bool hidden) override;
    bool IsInteractive() const override;
};

}  // namespace wizard
