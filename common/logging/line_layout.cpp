#include "common/logging/line_layout.h"

#include <array>
#include <cstring>

#include "common/logging/time_stamp.h"

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

constexpr std::size_t most_digits = 10;

// Most of the pieces of a line are empty most of the time, and a call for each costs more than the line.
char* put(char* target, std::string_view text) {
    if (text.empty()) return target;
    std::memcpy(target, text.data(), text.size());
    return target + text.size();
}

// A size that is known beforehand makes it two moves in place of a call.
char* put_time_stamp(char* target, std::string_view text) {
    if (text.size() != time_stamp_size) return put(target, text);
    std::memcpy(target, text.data(), time_stamp_size);
    return target + time_stamp_size;
}

char* put_thread(char* target, std::uint32_t id, std::size_t width) {
    *target++ = '<';
    std::size_t digits = 1;
    for (std::uint32_t rest = id / 10; rest > 0; rest /= 10) ++digits;
    for (; width > digits; --width) *target++ = ' ';
    for (std::size_t at = digits; at > 0; id /= 10) target[--at] = static_cast<char>('0' + id % 10);
    target += digits;
    *target++ = '>';
    *target++ = ' ';
    return target;
}

std::size_t indentation(const line_t& line) { return std::size_t{2} * line.record.depth; }

}  // namespace

std::size_t longest_file_line(const line_t& line) {
    constexpr std::size_t brackets_and_marker = 3 + 5;
    return line.time_stamp.size() + most_digits + brackets_and_marker + line.record.prefix.size() + indentation(line) +
           line.piece.size();
}

char* put_file_line(char* target, const line_t& line) {
    target = put_time_stamp(target, line.time_stamp);
    target = put_thread(target, line.thread_id, 6);
    target = put(target, line.record.prefix);
    target = put(target, file_marker(line.record));
    for (std::size_t blanks = indentation(line); blanks > 0; --blanks) *target++ = ' ';
    return put(target, line.piece);
}

void append_console_line(std::string& target, const line_t& line) {
    target.append(console_label(line.record.level)).append(indentation(line), ' ').append(line.piece);
}

void append_short_line(std::string& target, const line_t& line) {
    std::array<char, most_digits + 3> thread{};
    const char* end = put_thread(thread.data(), line.thread_id % 100, 2);
    target.append(line.time_stamp).append(thread.data(), static_cast<std::size_t>(end - thread.data()));
    append_console_line(target, line);
}

}  // namespace logging
