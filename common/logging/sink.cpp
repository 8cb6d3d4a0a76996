#include "common/logging/sink.h"

#include "common/text/find_unit.h"

namespace logging::receiver {

void sink_t::write(std::string_view time_stamp, std::uint32_t thread_id, const record_t& record) {
    std::string_view rest = record.text;
    for (std::size_t index = 0;; ++index) {
        const std::size_t end = text::find_unit(rest, '\n');
        std::string_view piece = rest.substr(0, end);
        // A carriage return before the line feed is half of the same line end.
        if (end < rest.size() && piece.ends_with('\r')) piece.remove_suffix(1);
        write_line({time_stamp, thread_id, record, piece, index});
        if (end == rest.size()) return;
        rest.remove_prefix(end + 1);
    }
}

}  // namespace logging::receiver
