// Throwing failures, and adding a catcher's sentence.
#pragma once

#include <cstdint>
#include <exception>
#include <string_view>

#include "common/exc/exceptions.h"
#include "common/exc/system_error_text.h"

namespace exc {

// Returns the Win32 id of the calling thread.
std::uint32_t current_thread_id() noexcept;

// Throws Exception with the message as its only part.
template <class Exception = runtime_exc_t>
[[noreturn]] void raise(std::string_view message) {
    Exception failure;
    failure.add_text(std::string(message));
    throw failure;
}

// Adds the three parts of a failed system call: the system's text for the code, the message, the error code.
void add_win_error(exc_base_t& failure, std::uint32_t code, std::string_view message);

// Throws win_sys_exc_t with these parts. Take GetLastError() before building the message: building it may call the
// system.
[[noreturn]] void raise_win_error(std::uint32_t code, std::string_view message);

// The same, with the path in place of the sentence's %1.
[[noreturn]] void raise_path_error(std::uint32_t code, std::string_view sentence, const std::wstring& path);

// Throws the cause again, with its type and error code, and with the context appended as a plain part. An exception
// outside this family becomes a runtime_exc_t with its what() as the first part.
[[noreturn]] void rethrow_with_context(const std::exception& cause, std::string_view context);

// The same, but always throws a runtime_exc_t.
[[noreturn]] void rethrow_as_runtime_error(const std::exception& cause, std::string_view context);

}  // namespace exc
