// A user with prepared answers. The transcript shows them in angle brackets, hidden ones with a "#".
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>

#include "common/exc/raise.h"
#include "wizard/console_device.h"

namespace test_support {

class CScriptedConsole : public wizard::IConsoleDevice {
public:
    explicit CScriptedConsole(std::deque<std::wstring> answers) : answers_(std::move(answers)) {
        wizard::UseConsoleDevice(this);
    }
    ~CScriptedConsole() override { wizard::UseConsoleDevice(nullptr); }

    void Write(const std::wstring& text) override { transcript_ += text; }

    // Without further answers, behaves like a user who presses Ctrl+C.
    std::wstring ReadLine(bool hidden) override {
        if (at_first_answer) std::exchange(at_first_answer, nullptr)();
        if (answers_.empty()) exc::raise<exc::term_exc_t>("no more answers");
        std::wstring answer = answers_.front();
        answers_.pop_front();
        transcript_ += (hidden ? L"<#" : L"<") + answer + L">";
        return answer;
    }

    bool IsInteractive() const override { return interactive; }

    bool interactive = true;
    std::function<void()> at_first_answer;

    const std::wstring& transcript() const { return transcript_; }
    std::size_t answers_left() const { return answers_.size(); }

private:
    std::deque<std::wstring> answers_;
    std::wstring transcript_;
};

}  // namespace test_support
