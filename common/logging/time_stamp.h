#pragma once

#include <cstdint>
#include <string>

#include "common/logging/sink.h"

namespace logging {

// Returns "[dd.MM.yyyy HH:mm:ss] " in Windows' local time, or "TIME ---" if Windows cannot represent the time. The
// argument counts the seconds since the beginning of 1601 (UTC).
std::string render_time_stamp(std::uint64_t seconds) noexcept;

// Makes the heads of lines. Composes one anew only when the second or the thread has changed. Not thread-safe.
class line_head_clock_t {
public:
    // Returns a copy, with a time that is at most one tick of the system (16 ms) old.
    line_head_t now(std::uint32_t thread_id) noexcept;

private:
    std::uint64_t tick_ = 0;
    std::uint64_t second_ = 0;
    line_head_t head_{{}, 0};
};

}  // namespace logging
