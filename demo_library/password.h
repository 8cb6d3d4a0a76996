// Passwords: in memory as texts that are wiped, in the state file protected by the system (CryptProtectData).
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <windows.h>

namespace demo_library {

// A null-terminated text that is overwritten before its memory is freed.
class secret_t {
public:
    explicit secret_t(std::wstring_view text = {}) : chars_(text.size() + 1) {
        std::ranges::copy(text, chars_.begin());
    }
    secret_t(secret_t&&) noexcept = default;  // moves the memory, so that no copy remains
    ~secret_t() { SecureZeroMemory(chars_.data(), chars_.size() * sizeof(wchar_t)); }

    std::wstring_view view() const noexcept { return {chars_.data(), chars_.size() - 1}; }
    wchar_t* data() noexcept { return chars_.data(); }

private:
    std::vector<wchar_t> chars_;
};

// Returns hexadecimal digits, none for an empty password. They are readable only on this host, but by every account of
// it: the settings belong to the host, and one administrator reads what another has set. The rights of the file keep
// others away. Throws error_t with the system's reason.
std::string protect(std::wstring_view password);

// Throws error_t, which says how to repair it, for digits that are damaged or were protected on another host.
secret_t unprotect(const std::string& digits);

}  // namespace demo_library
