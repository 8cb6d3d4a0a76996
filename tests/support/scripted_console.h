// A user with prepared answers. The transcript shows them in angle brackets, hidden ones with a "#".
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>

#include "common/exc/raise.h"
#include "wizard/console.h"

namespace test_support {

using Answers = std::deque<std::wstring>;

struct CScriptedConsole : wizard::IConsoleDevice {
    explicit CScriptedConsole(Answers prepared) : answers(std::move(prepared)) { wizard::UseConsoleDevice(this); }
    ~CScriptedConsole() override { wizard::UseConsoleDevice(nullptr); }

    void Write(const std::wstring& text) override { transcript += text; }

    // Without further answers, behaves like a user who presses Ctrl+C.
    std::wstring ReadLine(bool hidden) override {
        if (at_first_answer) std::exchange(at_first_answer, nullptr)();
        if (answers.empty()) exc::raise<exc::term_exc_t>("no more answers");
        std::wstring answer = answers.front();
        answers.pop_front();
        transcript += (hidden ? L"<#" : L"<") + answer + L">";
        return answer;
    }

    bool IsInteractive() const override { return true; }

    std::function<void()> at_first_answer;
    Answers answers;
    std::wstring transcript;
};

}  // namespace test_support
