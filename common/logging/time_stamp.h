// The time stamp in front of a line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

namespace logging {

inline constexpr std::size_t time_stamp_size = 22;  // of every one but "TIME ---"

// "[dd.MM.yyyy HH:mm:ss] " in local time, or "TIME ---" for a time that has no local calendar time.
std::string render_time_stamp(std::time_t time) noexcept;

// Renders once per second. Not for several threads at once.
class time_stamp_clock_t {
public:
    // The present time, up to one tick of the system (16 ms) behind; valid until the next call.
    std::string_view now() noexcept;

private:
    void look_at_time() noexcept;

    std::uint64_t tick_ = 0;
    std::uint64_t second_begin_ = 0;  // in units of 100 ns since 1601
    std::string text_;
};

}  // namespace logging
