#include "common/exc/exceptions.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <istream>
#include <ostream>

#include <boost/make_shared.hpp>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"

namespace exc {
namespace {

// The serialised form: little-endian numbers, counted texts, one-byte flags.
static_assert(std::endian::native == std::endian::little);

void read_bytes(std::istream& source, void* target, std::size_t size) {
    if (!source.read(static_cast<char*>(target), static_cast<std::streamsize>(size))) {
        raise("Serialised exception is cut off.");
    }
}

std::uint32_t read_u32(std::istream& source) {
    std::uint32_t value = 0;
    read_bytes(source, &value, sizeof value);
    return value;
}

// Allocates no more memory than the stream has bytes, whatever length it announces.
std::string read_text(std::istream& source) {
    constexpr std::size_t chunk = 4096;
    std::string text;
    for (std::size_t left = read_u32(source), size = 0; left > 0; left -= size) {
        size = std::min(left, chunk);
        text.resize(text.size() + size);
        read_bytes(source, text.data() + text.size() - size, size);
    }
    return text;
}

bool read_flag(std::istream& source) {
    char byte = 0;
    read_bytes(source, &byte, 1);
    return byte != 0;
}

void write_u32(std::ostream& target, std::uint32_t value) {
    target.write(reinterpret_cast<const char*>(&value), sizeof value);
}

void write_text(std::ostream& target, const std::string& text) {
    write_u32(target, static_cast<std::uint32_t>(text.size()));
    target.write(text.data(), static_cast<std::streamsize>(text.size()));
}

void write_flag(std::ostream& target, bool flag) { target.put(flag ? '\1' : '\0'); }

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

exc_base_t::exc_base_t() : thrower_thread_id_(current_thread_id()) {}

void exc_base_t::add_part(const std::string& text, bool trace) {
    parts_.push_back({text, trace});
    compose_messages();
}

void exc_base_t::add_error_code(std::uint32_t code) {
    std::array<char, 32> line{};
    std::snprintf(line.data(), line.size(), "Error code: 0x%08x", code);
    add_trace_text(line.data());
}

void exc_base_t::compose_messages() {
    composed_.clear();
    plain_.clear();
    const char* separator = "";
    for (const message_part_t& part : parts_) {
        composed_.append(separator).append(part.trace ? "--tr:" : "").append(part.text);
        plain_.append(separator).append(part.text);
        separator = "\n";
    }
}

void exc_base_t::read(std::istream& source) {
    std::vector<message_part_t> parts = parts_;
    for (std::uint32_t left = read_u32(source); left > 0; --left) {
        std::string text = read_text(source);
        const bool trace = read_flag(source);
        parts.push_back({std::move(text), trace});
    }
    const std::uint32_t thread = read_u32(source);
    trace_records_t records = trace_records_;
    for (std::uint32_t left = read_u32(source); left > 0; --left) {
        records.list.push_back(read_record(source));
        ++records.counts[records.list.back()];
    }
    parts_ = std::move(parts);
    thrower_thread_id_ = thread;
    trace_records_ = std::move(records);
    compose_messages();
}

void exc_base_t::write(std::ostream& target) const {
    write_u32(target, static_cast<std::uint32_t>(parts_.size()));
    for (const message_part_t& part : parts_) {
        write_text(target, part.text);
        write_flag(target, part.trace);
    }
    write_u32(target, thrower_thread_id_);
    write_u32(target, static_cast<std::uint32_t>(trace_records_.list.size()));
    for (const trace_record_t& record : trace_records_.list) {
        write_u32(target, static_cast<std::uint32_t>(record.event));
        write_text(target, record.info);
    }
}

boost::shared_ptr<exc_base_t> runtime_exc_t::clone() const { return boost::make_shared<runtime_exc_t>(*this); }
void runtime_exc_t::rethrow() const { throw runtime_exc_t(*this); }

boost::shared_ptr<exc_base_t> win_sys_exc_t::clone() const { return boost::make_shared<win_sys_exc_t>(*this); }
void win_sys_exc_t::rethrow() const { throw win_sys_exc_t(*this); }

boost::shared_ptr<exc_base_t> file_locked_exc_t::clone() const { return boost::make_shared<file_locked_exc_t>(*this); }
void file_locked_exc_t::rethrow() const { throw file_locked_exc_t(*this); }

boost::shared_ptr<exc_base_t> term_exc_t::clone() const { return boost::make_shared<term_exc_t>(*this); }
void term_exc_t::rethrow() const { throw term_exc_t(*this); }

}  // namespace exc
