// The exceptions of the library. They never leave it: answer.h turns them into a status and an error text.
#pragma once

#include <cstdint>
#include <exception>
#include <initializer_list>
#include <string>
#include <utility>

namespace demo_library {

// A failure with the text that the administrator reads.
class error_t : public std::exception {
public:
    explicit error_t(std::wstring text) : text_(std::move(text)) {}
    const std::wstring& text() const noexcept { return text_; }

private:
    std::wstring text_;
};

// A failure without a text.
class silent_error_t : public std::exception {};

// Throws error_t: the sentence, ": " and the system's text for the code. Store GetLastError() before the sentence is
// built: allocating its memory may change the last error.
[[noreturn]] void throw_system_error(std::uint32_t code, const std::wstring& sentence);

// Throws error_t if one of the out-arguments is null.
void require_out(std::initializer_list<const void*> out);

}  // namespace demo_library
