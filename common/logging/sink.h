// What one line of the log looks like, without its line end, and where lines go.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common/logging/component.h"

namespace logging {

// What each line of a record begins with.
class line_head_t {
public:
    // A longer time stamp than render_time_stamp() returns is cut off.
    line_head_t(std::string_view time_stamp, std::uint32_t thread_id) noexcept;

    std::string_view time_stamp() const { return {text_.data(), time_stamp_size_}; }
    std::uint32_t thread_id() const { return thread_id_; }

    // Returns the time stamp, and the thread's id in a field of six characters.
    std::string_view in_file() const { return {text_.data(), size_}; }

private:
    static constexpr std::size_t longest_time_stamp = 22;
    static constexpr std::size_t longest_thread = 13;

    std::array<char, longest_time_stamp + longest_thread> text_{};
    std::size_t time_stamp_size_;
    std::size_t size_;
    std::uint32_t thread_id_;
};

// One line of a record on its way to a sink.
struct line_t {
    const line_head_t& head;
    const record_t& record;
    std::string_view piece;  // this line's part of the record's text
};

// Appends the head, prefix, level marker, indentation, text. Lines after the first one carry all of it again, so that
// each can be found and read by itself.
void append_file_line(std::string& target, const line_t& line);

// Appends level label, indentation, text.
void append_console_line(std::string& target, const line_t& line);

// Appends time stamp, the last two digits of the thread, level label, indentation, text.
void append_short_line(std::string& target, const line_t& line);

namespace receiver {

// A place where log lines go. The logger calls a sink under its lock: never from two threads at once, and never again
// while a call runs. What a sink throws is dropped: this sink loses the record, the others still get it.
class sink_t {
public:
    sink_t() = default;
    virtual ~sink_t() = default;
    sink_t(const sink_t&) = delete;
    sink_t& operator=(const sink_t&) = delete;

    // Cuts the text at its line feeds and passes each piece to write_line().
    virtual void write(const line_head_t& head, const record_t& record);

protected:
    virtual void write_line(const line_t& line) = 0;
};

}  // namespace receiver

}  // namespace logging
