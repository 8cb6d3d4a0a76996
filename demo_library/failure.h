// The exceptions of the library. They never leave it: answer.h turns them into a status and an error text.
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

// A failure without a text.
class silent_failure_t : public std::exception {};

// Throws failure_t: the sentence, ": " and the system's text for the code. Store GetLastError() before the sentence is
// built: allocating its memory may change the last error.
[[noreturn]] void throw_system_failure(std::uint32_t code, const std::wstring& sentence);

// Throws failure_t for an out-argument that is null.
void require_out(const void* out);

}  // namespace demo_library
