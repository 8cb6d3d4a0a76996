#include "common/logging/sink.h"

#include <algorithm>

#include "common/text/find_unit.h"

namespace logging {
namespace {

constexpr std::string_view file_marker(const record_t& record) {
    if (record.level < level_warning) return {};
    if (record.highlighted) return ">>  |";
    return record.level == level_warning ? "WARN|" : "ERR |";
}

constexpr std::string_view console_label(unsigned level) {
    switch (level) {
        case level_detail:
            return {};
        case level_info:
        case level_notice:
            return "Info     ";
        case level_warning:
            return "Warning  ";
        default:
            return "Error    ";
    }
}

// Returns the id in angle brackets, right-aligned to the width, and a space: at most 13 characters, which a string
// holds without allocating.
std::string thread_text(std::uint32_t thread_id, std::size_t width) noexcept {
    const std::string digits = std::to_string(thread_id);
    return '<' + std::string(width - std::min(width, digits.size()), ' ') + digits + "> ";
}

std::size_t indentation(const line_t& line) { return std::size_t{2} * line.record.depth; }

}  // namespace

line_head_t::line_head_t(std::string_view time_stamp, std::uint32_t thread_id) noexcept
    : time_stamp_size_(time_stamp.copy(text_.data(), longest_time_stamp)),
      size_(time_stamp_size_ + thread_text(thread_id, 6).copy(text_.data() + time_stamp_size_, longest_thread)),
      thread_id_(thread_id) {}

void append_file_line(std::string& target, const line_t& line) {
    target.append(line.head.in_file()).append(line.record.prefix).append(file_marker(line.record));
    target.append(indentation(line), ' ').append(line.piece);
}

void append_console_line(std::string& target, const line_t& line) {
    target.append(console_label(line.record.level)).append(indentation(line), ' ').append(line.piece);
}

void append_short_line(std::string& target, const line_t& line) {
    target.append(line.head.time_stamp()).append(thread_text(line.head.thread_id() % 100, 2));
    append_console_line(target, line);
}

void receiver::sink_t::write(const line_head_t& head, const record_t& record) {
    std::string_view rest = record.text;
    for (;;) {
        const std::size_t end = text::find_unit(rest, '\n');
        std::string_view piece = rest.substr(0, end);
        // A carriage return before the line feed is half of the same line end.
        if (end < rest.size() && piece.ends_with('\r')) piece.remove_suffix(1);
        write_line({head, record, piece});
        if (end == rest.size()) return;
        rest.remove_prefix(end + 1);
    }
}

}  // namespace logging
