// Buffers that held a password are overwritten before their memory goes back.
#pragma once

#include <string>

#include "common/win32.h"

namespace text {

// Overwrites the whole capacity and empties the text.
template <class Char>
void wipe(std::basic_string<Char>& secret) noexcept {
    SecureZeroMemory(secret.data(), secret.capacity() * sizeof(Char));
    secret.clear();
}

// Wipes a text that outlives this object, on every way out of the scope.
template <class Char>
class wipe_at_exit_t {
public:
    explicit wipe_at_exit_t(std::basic_string<Char>& secret) noexcept : secret_(secret) {}
    ~wipe_at_exit_t() { wipe(secret_); }
    wipe_at_exit_t(const wipe_at_exit_t&) = delete;
    wipe_at_exit_t& operator=(const wipe_at_exit_t&) = delete;

private:
    std::basic_string<Char>& secret_;
};

}  // namespace text
