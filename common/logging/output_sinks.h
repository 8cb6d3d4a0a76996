// The sinks other than the log file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/logging/log_line.h"
#include "common/win32.h"

namespace logging::receiver {

// Passes each line in the short layout to an attached debugger, or else to the program of a trusted account that
// monitors debugger output; a monitor gets at most 4,091 bytes of a line. Looks for one once per second, and gives up
// until then if a line was not taken within 20 ms.
class COutputDebugStringLog : public sink_t {
public:
    void write(const line_head_t& head, const record_t& record) override;

protected:
    void write_line(const line_t& line) override;

private:
    std::string text_;
    std::uint64_t looked_at_ = 0;  // second since the start of the system
    bool monitored_ = false;
};

// Writes lines in the console layout to the standard output of the process, bypassing std::cout: what is copied from
// std::cout into the log cannot come round again. A console gets UTF-16, a file or pipe UTF-8.
class stdout_log_file_t : public sink_t {
public:
    // Throws exc::runtime_exc_t if the process has no standard output.
    stdout_log_file_t();

    void write(const line_head_t& head, const record_t& record) override;

protected:
    void write_line(const line_t& line) override;

private:
    HANDLE output_;      // belongs to the process
    std::string lines_;  // of the current record
};

}  // namespace logging::receiver
