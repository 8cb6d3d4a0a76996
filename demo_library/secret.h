// A null-terminated text that is overwritten before its memory is freed.
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

#include <windows.h>

namespace demo_library {

class secret_t {
public:
    secret_t() = default;
    explicit secret_t(std::wstring_view text) : chars_(text.size() + 1) {
        std::copy(text.begin(), text.end(), chars_.begin());
    }
    secret_t(const secret_t&) = default;
    secret_t(secret_t&&) noexcept = default;  // moves the memory, so that no copy remains
    secret_t& operator=(secret_t other) noexcept {
        chars_.swap(other.chars_);
        return *this;
    }
    ~secret_t() {
        if (!chars_.empty()) SecureZeroMemory(chars_.data(), chars_.size() * sizeof(wchar_t));
    }

    bool empty() const noexcept { return chars_.size() <= 1; }
    std::wstring_view view() const noexcept { return {chars_.data(), empty() ? 0 : chars_.size() - 1}; }
    wchar_t* data() noexcept { return chars_.data(); }  // null for one that was never given a text

private:
    std::vector<wchar_t> chars_;
};

}  // namespace demo_library
