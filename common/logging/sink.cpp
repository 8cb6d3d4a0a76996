#include "common/logging/sink.h"

#include <algorithm>
#include <array>
#include <optional>

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

// Tabs are shown as they are. "\xC2" begins the control characters U+0080 to U+009F in UTF-8, and some others.
constexpr bool may_begin_control(unsigned char unit) {
    return (unit < 0x20 && unit != '\t') || unit == 0x7F || unit == 0xC2;
}

// A table is quicker than the comparisons: every record is looked through.
constexpr auto is_suspicious = [] {
    std::array<bool, 256> table{};
    for (std::size_t unit = 0; unit < table.size(); ++unit)
        table[unit] = may_begin_control(static_cast<unsigned char>(unit));
    return table;
}();

bool is_plain(std::string_view text) {
    return std::ranges::none_of(text, [](unsigned char unit) { return is_suspicious[unit]; });
}

// Returns the number of the control character that the text begins with, or nothing.
std::optional<unsigned char> control_at_begin(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    if (first != 0xC2) return is_suspicious[first] ? std::optional(first) : std::nullopt;
    const auto second = static_cast<unsigned char>(text.size() > 1 ? text[1] : '\0');
    return second >= 0x80 && second < 0xA0 ? std::optional(second) : std::nullopt;
}

std::string with_visible_controls(std::string_view text) {
    constexpr const char* digits = "0123456789ABCDEF";
    std::string visible;
    for (; !text.empty(); text.remove_prefix(1)) {
        if (const auto control = control_at_begin(text)) {
            visible.append("\\x").append(1, digits[*control / 16]).append(1, digits[*control % 16]);
            if (*control >= 0x80) text.remove_prefix(1);
        } else {
            visible += text.front();
        }
    }
    return visible;
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
    if (is_plain(record.text)) return write_line({head, record, record.text, 0});
    std::string_view rest = record.text;
    std::string visible;
    for (std::size_t index = 0;; ++index) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        std::string_view piece = rest.substr(0, end);
        // A carriage return before the line feed is half of the same line end.
        if (end < rest.size() && piece.ends_with('\r')) piece.remove_suffix(1);
        if (!is_plain(piece)) piece = visible = with_visible_controls(piece);
        write_line({head, record, piece, index});
        if (end == rest.size()) return;
        rest.remove_prefix(end + 1);
    }
}

}  // namespace logging
