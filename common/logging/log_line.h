// What one line of the log looks like, without its line end, and where lines go.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common/logging/component.h"

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

// What all lines of a record have in common.
struct line_head_t {
    time_stamp_t time_stamp;
    std::uint32_t thread_id;
};

// One line of a record on its way to a sink.
struct line_t {
    const line_head_t& head;
    const record_t& record;
    std::string_view piece;  // this line's part of the record's text
    std::size_t index;       // of the piece, counted from 0
};

// Appends the head, prefix, level marker, indentation, text. Lines after the first one carry all of it again, so that
// each can be found and read by itself, but "+" in place of the thread: no text can imitate a record.
void append_file_line(std::string& target, const line_t& line);

// Appends level label, indentation, text.
void append_console_line(std::string& target, const line_t& line);

// Appends time stamp, the last two digits of the thread (or "+" as above), level label, indentation, text.
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

    // Cuts the text at its line feeds and passes each piece to write_line(). In a piece, each control character except
    // the tab is written as \x and two hexadecimal digits.
    virtual void write(const line_head_t& head, const record_t& record);

protected:
    // Not called if a sink has a write() of its own.
    virtual void write_line(const line_t&) {}
};

}  // namespace receiver

}  // namespace logging
