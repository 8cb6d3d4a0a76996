#include "common/exc/trace_records.h"

#include "common/exc/binary_stream.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"

namespace exc {
namespace {

trace_record_t read_record(std::istream& source) {
    const std::uint32_t event = read_u32(source);
    std::string info = read_text(source);
    switch (static_cast<trace_event_t>(event)) {
        case trace_event_t::thrown:
        case trace_event_t::context_added:
        case trace_event_t::rethrown:
            return {static_cast<trace_event_t>(event), std::move(info)};
    }
    raise(format_message("Unexpected trace event: [%1]. Info: %2.", {std::to_string(event), info}));
}

}  // namespace

void trace_records_t::read(std::istream& source) {
    const std::uint32_t count = read_u32(source);
    for (std::uint32_t i = 0; i < count; ++i) {
        list_.push_back(read_record(source));
        ++counts_[list_.back()];
    }
}

void trace_records_t::write(std::ostream& target) const {
    write_u32(target, static_cast<std::uint32_t>(list_.size()));
    for (const trace_record_t& record : list_) {
        write_u32(target, static_cast<std::uint32_t>(record.event));
        write_text(target, record.info);
    }
}

std::size_t trace_records_t::count(const trace_record_t& record) const {
    const auto found = counts_.find(record);
    return found == counts_.end() ? 0 : found->second;
}

}  // namespace exc
