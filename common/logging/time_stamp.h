#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace logging {

// "[dd.MM.yyyy HH:mm:ss] " in the local time of Windows, or "TIME ---" for a time outside its calendar. The time is
// given in seconds since 1601 (UTC).
std::string render_time_stamp(std::uint64_t seconds) noexcept;

// Renders once per second. Not thread-safe.
class time_stamp_clock_t {
public:
    // Returns the current time, at most one tick of the system (16 ms) old; valid until the next call.
    std::string_view now() noexcept;

private:
    std::uint64_t tick_ = 0;
    std::uint64_t second_ = 0;
    std::array<char, 24> text_{};
    std::size_t size_ = 0;
};

}  // namespace logging
