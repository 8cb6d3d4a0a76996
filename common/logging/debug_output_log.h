#pragma once

#include "common/logging/sink.h"

namespace logging::receiver {

// Gives each line in the short layout to the debugger, or to the program that monitors debugger output. While there
// is neither it does nothing; it looks again every second.
class COutputDebugStringLog : public sink_t {
public:
    void write(std::string_view time_stamp, std::uint32_t thread_id, const record_t& record) override;

protected:
    void write_line(const line_t& line) override;

private:
    bool somebody_listens();

    std::string text_;
    std::uint64_t looked_at_ = 0;  // milliseconds since the system's start, 0 for never
    bool somebody_listens_ = false;
};

}  // namespace logging::receiver
