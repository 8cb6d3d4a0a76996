#pragma once

#include "common/logging/line_layout.h"

namespace logging::receiver {

// A place where log lines go. The logger calls a sink under its lock: never from two threads at once, and never again
// while a call runs. What a sink throws is dropped: this sink loses the record, the others still get it.
class sink_t {
public:
    sink_t() = default;
    virtual ~sink_t() = default;
    sink_t(const sink_t&) = delete;
    sink_t& operator=(const sink_t&) = delete;

    // Cuts the text at its line feeds and passes each piece to write_line().
    virtual void write(std::string_view time_stamp, std::uint32_t thread_id, const record_t& record);

protected:
    virtual void write_line(const line_t& line) = 0;
};

}  // namespace logging::receiver
