#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace logging {

// A text of at most 22 characters; what is longer is cut off. It is copied for each record, and so allocates nothing.
class time_stamp_t {
public:
    explicit time_stamp_t(std::string_view text) noexcept : size_(text.copy(text_.data(), text_.size())) {}
    operator std::string_view() const noexcept { return {text_.data(), size_}; }

private:
    std::array<char, 22> text_{};
    std::size_t size_;
};

// Returns "[dd.MM.yyyy HH:mm:ss] " in Windows' local time, or "TIME ---" if Windows cannot represent the time. The
// argument counts the seconds since the beginning of 1601 (UTC).
time_stamp_t render_time_stamp(std::uint64_t seconds) noexcept;

// Renders the time anew only when the second has changed. Not thread-safe.
class time_stamp_clock_t {
public:
    // Returns a time that is at most one tick of the system (16 ms) old.
    time_stamp_t now() noexcept;

private:
    std::uint64_t tick_ = 0;
    std::uint64_t second_ = 0;
    time_stamp_t time_stamp_{{}};
};

}  // namespace logging
