// The sinks other than the log file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/logging/sink.h"

namespace logging::receiver {

// Passes each line in the short layout to the debugger, or to the program that monitors debugger output. Does nothing
// while there is neither; looks again at most once per second.
class COutputDebugStringLog : public sink_t {
public:
    void write(const line_head_t& head, const record_t& record) override;

protected:
    void write_line(const line_t& line) override;

private:
    std::string text_;
    std::uint64_t looked_at_ = 0;  // second since the start of the system
    bool somebody_listens_ = false;
};

// Writes lines in the console layout to the standard output of the process, bypassing std::cout: what is copied from
// std::cout into the log cannot come round again. A console gets UTF-16, a file or pipe UTF-8.
class stdout_log_file_t : public sink_t {
public:
    // Throws exc::runtime_exc_t "Standard output is not available." when the process has none.
    stdout_log_file_t();

    void write(const line_head_t& head, const record_t& record) override;

protected:
    void write_line(const line_t& line) override;

private:
    void* output_;  // belongs to the process
    bool is_console_;
    std::string lines_;  // of the current record
};

}  // namespace logging::receiver
