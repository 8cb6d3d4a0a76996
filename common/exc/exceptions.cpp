#include "common/exc/exceptions.h"

#include <array>
#include <cstdio>

#include <boost/make_shared.hpp>

#include "common/exc/binary_stream.h"
#include "common/exc/raise.h"

namespace exc {

exc_base_t::exc_base_t() : thrower_thread_id_(current_thread_id()) {}

void exc_base_t::add_part(const std::string& text, bool trace) {
    parts_.push_back({text, trace});
    compose_messages();
}

void exc_base_t::add_text(const std::string& text) { add_part(text, false); }

void exc_base_t::add_trace_text(const std::string& text) { add_part(text, true); }

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
    records.read(source);
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
    trace_records_.write(target);
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
