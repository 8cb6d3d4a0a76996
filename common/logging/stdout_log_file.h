#pragma once

#include "common/logging/sink.h"

namespace logging::receiver {

// Writes lines in the console layout to the standard output of the process, past std::cout: what is copied from
// std::cout into the log cannot come round again. A console gets UTF-16, a file or pipe UTF-8.
class stdout_log_file_t : public sink_t {
public:
    // Raises exc::runtime_exc_t "Standard output is not available." when the process has none.
    stdout_log_file_t();

protected:
    void write_line(const line_t& line) override;
    void end_record() override;

private:
    void* output_;  // belongs to the process
    bool is_console_;
    std::string lines_;  // of the present record
};

}  // namespace logging::receiver
