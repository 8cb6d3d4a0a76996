#include "common/logging/sink.h"

#include <algorithm>

#include "common/encoding/controls.h"

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

// Returns the number in angle brackets, right-aligned to the width, and a space; "+" in its place for lines after the
// first one. These are at most 13 characters, which a string holds without allocating.
std::string thread_field(const line_t& line, std::uint32_t number, std::size_t width) {
    const std::string shown = line.index == 0 ? std::to_string(number) : "+";
    return '<' + std::string(width - std::min(width, shown.size()), ' ') + shown + "> ";
}

std::size_t indentation(const line_t& line) { return std::size_t{2} * line.record.depth; }

}  // namespace

void append_file_line(std::string& target, const line_t& line) {
    target.append(line.head.time_stamp).append(thread_field(line, line.head.thread_id, 6)).append(line.record.prefix);
    target.append(file_marker(line.record)).append(indentation(line), ' ').append(line.piece);
}

void append_console_line(std::string& target, const line_t& line) {
    target.append(console_label(line.record.level)).append(indentation(line), ' ').append(line.piece);
}

void append_short_line(std::string& target, const line_t& line) {
    target.append(line.head.time_stamp).append(thread_field(line, line.head.thread_id % 100, 2));
    append_console_line(target, line);
}

void receiver::sink_t::write(const line_head_t& head, const record_t& record) {
    if (encoding::is_plain(record.text)) return write_line({head, record, record.text, 0});
    std::string_view rest = record.text;
    for (std::size_t index = 0;; ++index) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        std::string_view piece = rest.substr(0, end);
        // A carriage return before the line feed is half of the same line end.
        if (end < rest.size() && piece.ends_with('\r')) piece.remove_suffix(1);
        const std::string visible = encoding::with_visible_controls(piece);
        write_line({head, record, visible, index});
        if (end == rest.size()) return;
        rest.remove_prefix(end + 1);
    }
}

}  // namespace logging
