#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace logging {

// Returns "[dd.MM.yyyy HH:mm:ss] " in Windows' local time, or "TIME ---" if Windows cannot represent the time. The
// argument counts the seconds since the beginning of 1601 (UTC).
std::string render_time_stamp(std::uint64_t seconds) noexcept;

// Renders the current time, at most once per second. Not thread-safe.
class time_stamp_clock_t {
public:
    // Returns the stamp of the current time, at most one tick of the system (16 ms) old. Valid until the next call.
    std::string_view now() noexcept;

private:
    std::uint64_t tick_ = 0;
    std::uint64_t second_ = 0;
    std::array<char, 24> text_{};
    std::size_t size_ = 0;
};

}  // namespace logging
