#include "common/logging/log_line.h"

#include <algorithm>
#include <locale>
#include <sstream>
#include <utility>

#include <boost/date_time/posix_time/posix_time.hpp>

#include "common/encoding/controls.h"
#include "common/win32.h"

namespace logging {
namespace {

constexpr std::uint64_t units_per_second = 10'000'000;  // of a FILETIME
const time_stamp_t unknown("TIME ---");

constexpr std::string_view file_marker(const record_t& record) {
    if (record.level < level_warning) return {};
    if (record.highlighted) return ">>  |";
    return record.level == level_warning ? "WARN|" : "ERR |";
}

constexpr std::string_view console_label(unsigned level) {
    constexpr std::string_view labels[] = {"", "Info     ", "Info     ", "Warning  ", "Error    "};
    return labels[std::min<unsigned>(level, level_error)];
}

// Returns the number in angle brackets, right-aligned to the width, and a space; "+" in its place for lines after the
// first one. These are at most 13 characters, which a string holds without allocating.
std::string thread_field(const line_t& line, std::uint32_t number, std::size_t width) {
    const std::string shown = line.index == 0 ? std::to_string(number) : "+";
    return '<' + std::string(width - std::min(width, shown.size()), ' ') + shown + "> ";
}

std::size_t indentation(const line_t& line) { return std::size_t{2} * line.record.depth; }

}  // namespace

time_stamp_t render_time_stamp(std::uint64_t seconds) noexcept try {
    const std::uint64_t units = seconds * units_per_second;
    const FILETIME time{static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
    SYSTEMTIME utc{}, local{};
    if (!FileTimeToSystemTime(&time, &utc) || !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local)) return unknown;
    std::ostringstream text;
    // The locale owns the facet.
    text.imbue(std::locale(std::locale::classic(), new boost::posix_time::time_facet("[%d.%m.%Y %H:%M:%S] ")));
    text << boost::posix_time::ptime(boost::gregorian::date(local.wYear, local.wMonth, local.wDay),
                                     boost::posix_time::time_duration(local.wHour, local.wMinute, local.wSecond));
    return time_stamp_t(text.str());
} catch (const std::exception&) {
    return unknown;
}

// The tick count is a plain read of memory; the time can cost a system call, which is too much for each record.
time_stamp_t time_stamp_clock_t::now() noexcept {
    const std::uint64_t tick = GetTickCount64();
    if (std::exchange(tick_, tick) == tick) return time_stamp_;
    FILETIME time{};
    GetSystemTimeAsFileTime(&time);
    const std::uint64_t units = (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
    const std::uint64_t second = units / units_per_second;
    if (std::exchange(second_, second) != second) time_stamp_ = render_time_stamp(second);
    return time_stamp_;
}

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
