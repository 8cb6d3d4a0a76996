// What happened to an exception before it was serialised. Only an exception that was read back has such records.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace exc {

enum class trace_event_t : std::uint32_t { thrown = 1, context_added = 2, rethrown = 3 };

struct trace_record_t {
    trace_event_t event;
    std::string info;  // UTF-8

    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes a zero in the comparison for a pointer
    auto operator<=>(const trace_record_t&) const = default;
};

class trace_records_t {
public:
    // Reads a 32-bit count, then for each record its event number and its info text. Throws runtime_exc_t "Unexpected
    // trace event: [%1]. Info: %2." for any other event.
    void read(std::istream& source);
    void write(std::ostream& target) const;

    const std::vector<trace_record_t>& list() const { return list_; }

    // Returns how often this record occurs.
    std::size_t count(const trace_record_t& record) const;

private:
    std::vector<trace_record_t> list_;
    std::map<trace_record_t, std::size_t> counts_;
};

}  // namespace exc
