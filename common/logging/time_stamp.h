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

// Returns the thread's id in angle brackets, right-aligned in at least this many characters, and a space.
std::string thread_text(std::uint32_t thread_id, std::size_t width) noexcept;

// What each line of a record begins with.
class line_head_t {
public:
    // A longer time stamp than render_time_stamp() returns is cut off.
    line_head_t(std::string_view time_stamp, std::uint32_t thread_id) noexcept;

    std::string_view time_stamp() const { return {text_.data(), time_stamp_size_}; }
    std::uint32_t thread_id() const { return thread_id_; }

    // Returns the time stamp and the thread in six characters.
    std::string_view in_file() const { return {text_.data(), size_}; }

private:
    static constexpr std::size_t longest_time_stamp = 22;
    static constexpr std::size_t longest_thread = 13;

    std::array<char, longest_time_stamp + longest_thread> text_{};
    std::size_t time_stamp_size_;
    std::size_t size_;
    std::uint32_t thread_id_;
};

// Makes the heads of lines, a new one at most once per second and change of the thread. Not thread-safe.
class line_head_clock_t {
public:
    // The time is at most one tick of the system (16 ms) old. Valid until the next call.
    const line_head_t& now(std::uint32_t thread_id) noexcept;

private:
    std::uint64_t tick_ = 0;
    std::uint64_t second_ = 0;
    line_head_t head_{{}, 0};
};

}  // namespace logging
