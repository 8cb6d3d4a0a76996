// What one line of the log looks like, without its line end. Pure functions: the same line gives the same text at any
// time on any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common/logging/record.h"

namespace logging {

// One line of a record on its way to a sink.
struct line_t {
    std::string_view time_stamp;  // as render_time_stamp() gives it
    std::uint32_t thread_id;      // of the thread that logs
    const record_t& record;
    std::string_view piece;  // this line's part of the record's text
    std::size_t index;       // of the piece, counted from 0
};

// Time stamp, "<thread> " in six characters, prefix, level marker, indentation, text. Lines after the first one carry
// all of it again, so that each can be found and read alone. Writes no more characters than longest_file_line() says
// and returns the end of what it wrote.
std::size_t longest_file_line(const line_t& line);
char* put_file_line(char* target, const line_t& line);

// The others append the line to target.

// Level label, indentation, text.
void append_console_line(std::string& target, const line_t& line);

// Time stamp, the last two digits of the thread, level label, indentation, text.
void append_short_line(std::string& target, const line_t& line);

}  // namespace logging
