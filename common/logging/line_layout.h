// What one line of the log looks like, without its line end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common/logging/component.h"

namespace logging {

// One line of a record on its way to a sink.
struct line_t {
    std::string_view time_stamp;  // as render_time_stamp() returns it
    std::uint32_t thread_id;      // of the thread that logs
    const record_t& record;
    std::string_view piece;  // this line's part of the record's text
    std::size_t index;       // of the piece, counted from 0
};

// Appends time stamp, thread in six characters, prefix, level marker, indentation, text. Lines after the first one
// carry all of it again, so that each can be found and read by itself.
void append_file_line(std::string& target, const line_t& line);

// Appends level label, indentation, text.
void append_console_line(std::string& target, const line_t& line);

// Appends time stamp, the last two digits of the thread, level label, indentation, text.
void append_short_line(std::string& target, const line_t& line);

}  // namespace logging
