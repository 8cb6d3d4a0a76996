#include "common/logging/log_file.h"

#include <algorithm>
#include <utility>

#include "common/exc/format_message.h"
#include "common/logging/log_archives.h"
#include "common/text/convert.h"

namespace logging::receiver {

log_file_t::log_file_t(const size_limits_t& limits, report_t report)
    : limits_(limits), report_(std::move(report)), archive_at_(limits.log_size) {}

void log_file_t::write_line(const line_t& line) {
    if (line.index == 0) {
        lines_size_ = 0;
        if (lost_ > 0) put_gap(line);
    }
    put(line);
}

void log_file_t::put_gap(const line_t& next) {
    const std::string text =
        exc::format_message("Records that could not be written to the log: %1.", std::to_string(lost_));
    put({next.time_stamp, next.thread_id, {.level = level_warning}, text, 0});
}

void log_file_t::put(const line_t& line) {
    const std::size_t needed = lines_size_ + longest_file_line(line) + 2;
    if (needed > buffer_.size()) buffer_.resize(2 * needed);
    char* end = put_file_line(buffer_.data() + lines_size_, line);
    *end++ = '\r';
    *end++ = '\n';
    lines_size_ = static_cast<std::size_t>(end - buffer_.data());
}

void log_file_t::end_record() {
    constexpr std::size_t common_size = 65'536;
    if (limits_.log_size != 0 && size_ >= archive_at_) try_archive();
    ++lost_;
    append({buffer_.data(), lines_size_});
    lost_ = 0;
    size_ += lines_size_;
    if (buffer_.size() > common_size) std::vector<char>().swap(buffer_);
}

void log_file_t::try_archive() try {
    archive();
    archive_at_ = limits_.log_size;
    failure_reported_ = false;
} catch (const std::exception& cause) {
    archive_at_ = size_ + std::max<std::uint64_t>(limits_.log_size / 10, 1);
    if (std::exchange(failure_reported_, true)) return;
    report_(exc::format_message("Cannot compress log file. Log: [%1].", text::wide_to_utf8(path())), cause);
}

void log_file_t::archive() {
    archive_log(path(), size_, limits_.archive_count);
    try {
        clear();
    } catch (const std::exception&) {
        withdraw_archive(path());
        throw;
    }
    size_ = 0;
}

}  // namespace logging::receiver
