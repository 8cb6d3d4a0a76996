#include "common/logging/stdout_log_file.h"

#include <algorithm>
#include <cstdio>

#include "common/exc/raise.h"
#include "common/text/convert.h"
#include "common/win32.h"

namespace logging::receiver {
namespace {

constexpr std::string_view unwritable = "Cannot write to standard output.";

void write_console(HANDLE console, const std::wstring& text) {
    constexpr std::size_t portion = 8192;  // a console takes only so much at a time
    for (std::size_t done = 0; done < text.size();) {
        const auto size = static_cast<DWORD>(std::min(portion, text.size() - done));
        DWORD written = 0;
        if (!WriteConsoleW(console, text.data() + done, size, &written, nullptr) || written == 0) {
            exc::raise_win_error(GetLastError(), unwritable);
        }
        done += written;
    }
}

void write_stream(HANDLE stream, const std::string& text) {
    for (std::size_t done = 0; done < text.size();) {
        DWORD written = 0;
        if (!WriteFile(stream, text.data() + done, static_cast<DWORD>(text.size() - done), &written, nullptr)) {
            exc::raise_win_error(GetLastError(), unwritable);
        }
        done += written;
    }
}

}  // namespace

stdout_log_file_t::stdout_log_file_t() : output_(GetStdHandle(STD_OUTPUT_HANDLE)) {
    if (output_ == nullptr || output_ == INVALID_HANDLE_VALUE) exc::raise("Standard output is not available.");
    DWORD mode = 0;
    is_console_ = GetConsoleMode(output_, &mode) != FALSE;
}

void stdout_log_file_t::write_line(const line_t& line) {
    if (line.index == 0) lines_.clear();
    append_console_line(lines_, line);
    lines_ += "\r\n";
}

void stdout_log_file_t::end_record() {
    std::fflush(stdout);  // what was printed before the record stands before it
    if (is_console_) {
        write_console(output_, text::utf8_to_wide(lines_));
    } else {
        write_stream(output_, lines_);
    }
}

}  // namespace logging::receiver
