#include "common/logging/output_sinks.h"

#include <algorithm>
#include <cstdio>

#include "common/exc/raise.h"
#include "common/platform/console.h"
#include "common/platform/owned.h"
#include "common/text/convert.h"

namespace logging::receiver {
namespace {

// The system passes debugger output to a monitoring program through a section that this program creates.
bool monitor_runs() {
    return static_cast<bool>(platform::unique_handle(OpenFileMappingW(FILE_MAP_WRITE, FALSE, L"DBWIN_BUFFER")));
}

void write_stream(HANDLE stream, std::string_view text) {
    DWORD written = 0;
    while (!text.empty() && WriteFile(stream, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
           written > 0) {
        text.remove_prefix(written);
    }
}

}  // namespace

// OutputDebugStringW throws and handles a structured exception, which costs more than writing the line to the file.
void COutputDebugStringLog::write(const line_head_t& head, const record_t& record) {
    const std::uint64_t second = GetTickCount64() / 1000;
    if (looked_at_ != second) {
        looked_at_ = second;
        somebody_listens_ = IsDebuggerPresent() || monitor_runs();
    }
    if (somebody_listens_) sink_t::write(head, record);
}

void COutputDebugStringLog::write_line(const line_t& line) {
    text_.clear();
    append_short_line(text_, line);
    text_ += '\n';
    std::ranges::replace(text_, '\0', ' ');  // it would end the text
    OutputDebugStringW(text::utf8_to_wide(text_).c_str());
}

stdout_log_file_t::stdout_log_file_t()
    : output_(GetStdHandle(STD_OUTPUT_HANDLE)), is_console_(platform::is_console(output_)) {
    if (output_ == nullptr || output_ == INVALID_HANDLE_VALUE) exc::raise("Standard output is not available.");
}

void stdout_log_file_t::write(const line_head_t& head, const record_t& record) {
    lines_.clear();
    sink_t::write(head, record);
    std::fflush(stdout);  // what was printed before the record comes first
    if (!is_console_) return write_stream(output_, lines_);
    std::ranges::replace(lines_, '\0', ' ');  // the conversion would end there
    platform::write_console(output_, text::utf8_to_wide(lines_));
}

void stdout_log_file_t::write_line(const line_t& line) {
    append_console_line(lines_, line);
    lines_ += "\r\n";
}

}  // namespace logging::receiver
