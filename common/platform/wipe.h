// Overwriting buffers that held a password, before their memory is released.
#pragma once

#include <string>

#include "common/win32.h"

namespace platform {

// Overwrites the whole capacity and empties the text.
template <class Char>
void wipe(std::basic_string<Char>& secret) noexcept {
    SecureZeroMemory(secret.data(), secret.capacity() * sizeof(Char));
    secret.clear();
}

// Wipes a text at the end of the scope, however it ends. The text must outlive this object.
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

}  // namespace platform
