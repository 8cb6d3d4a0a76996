// How the library's own code fails. Nothing of this leaves the library: answer.h turns it into a status and a text.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace demo_library {

// A failure with the text that the administrator reads.
class failure_t : public std::exception {
public:
    explicit failure_t(std::wstring text) : text_(std::move(text)) {}
    const std::wstring& text() const noexcept { return text_; }

private:
    std::wstring text_;
};

// A failure that gives no text.
class silent_failure_t : public std::exception {};

// Raises failure_t: the sentence, ": " and the system's text for the code. Take GetLastError() before building the
// sentence.
[[noreturn]] void raise_system_failure(std::uint32_t code, const std::wstring& sentence);

// Raises failure_t for an out-argument that is null.
void require_place(const void* out);

}  // namespace demo_library
