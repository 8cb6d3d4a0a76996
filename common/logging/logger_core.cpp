#include "common/logging/logger_core.h"

#include <algorithm>
#include <ctime>
#include <mutex>
#include <utility>

#include <boost/make_shared.hpp>

#include "common/win32.h"

namespace logging {
namespace {

constexpr unsigned deepest_nesting = 3;
constexpr std::size_t most_pending = 64;

}  // namespace

logger_t::~logger_t() { clear_multiplexors(); }

void logger_t::log(const record_t& record) noexcept {
    if (record.level < lowest_level_.load(std::memory_order_relaxed)) return;
    if (bounded_.load(std::memory_order_relaxed)) {
        try_log_for(record, bounded_wait_, stopped_thread_);
        return;
    }
    const std::lock_guard guard(lock_);
    hand_out(record);
}

bool logger_t::try_log_for(const record_t& record, std::chrono::milliseconds wait,
                           std::uint32_t stopped_thread) noexcept {
    if (record.level < lowest_level_.load(std::memory_order_relaxed)) return true;
    // Also when this is that thread: it does not come back to hand out what it would postpone now.
    if (stopped_thread != 0 && lock_.owner() == stopped_thread) return write_past_owner(record);
    if (!lock_.try_lock_for(wait, stopped_thread)) return false;
    const std::lock_guard guard(lock_, std::adopt_lock);
    hand_out(record);
    return true;
}

void logger_t::begin_bounded_waits(std::chrono::milliseconds wait, std::uint32_t stopped_thread) noexcept {
    bounded_wait_ = wait;
    stopped_thread_ = stopped_thread;
    bounded_ = true;
}

void logger_t::hand_out(const record_t& record) noexcept {
    // The sinks are in the middle of a record: their buffers are in use.
    if (handing_out_) return postpone(record);
    handing_out_ = true;
    write_to_sinks(record);
    if (!pending_.empty()) hand_out_pending();
    handing_out_ = false;
    if (!detached_.empty()) {
        std::erase(sinks_, nullptr);
        detached_.clear();
    }
}

void logger_t::postpone(const record_t& record) noexcept try {
    if (nesting_ >= deepest_nesting || pending_.size() >= most_pending) return;
    pending_.push_back({record.level, record.highlighted, record.depth, std::string(record.prefix),
                        std::string(record.text), nesting_ + 1});
} catch (const std::exception&) {
    // Without memory the record is lost; the caller's work goes on.
}

void logger_t::hand_out_pending() noexcept {
    while (!pending_.empty()) {
        const pending_t next = std::move(pending_.front());
        pending_.pop_front();
        nesting_ = next.nesting;
        write_to_sinks({next.level, next.highlighted, next.depth, next.prefix, next.text});
    }
    nesting_ = 0;
}

void logger_t::write_to_sinks(const record_t& record) noexcept {
    const std::string_view now = clock_.now();
    for (std::size_t i = 0; i < sinks_.size(); ++i) {  // NOLINT(modernize-loop-convert): a sink may attach sinks
        if (!sinks_[i]) continue;
        busy_sink_ = sinks_[i].get();
        try {
            sinks_[i]->write(now, lock_.owner(), record);
        } catch (...) {
            // The other sinks still get the record; there is nobody to tell that this one failed.
        }
    }
    busy_sink_ = nullptr;
}

bool logger_t::write_past_owner(const record_t& record) noexcept {
    if (writing_past_owner_.test_and_set()) return false;
    const std::string now = render_time_stamp(std::time(nullptr));
    for (const auto& sink : sinks_) {
        if (!sink || sink.get() == busy_sink_) continue;
        try {
            sink->write(now, GetCurrentThreadId(), record);
        } catch (...) {
            // As for any record: the other sinks still get it.
        }
    }
    writing_past_owner_.clear();
    return true;
}

void logger_t::attach(boost::shared_ptr<receiver::sink_t> sink) {
    const std::lock_guard guard(lock_);
    detached_.reserve(sinks_.size() + 1);  // detaching needs no memory
    sinks_.push_back(std::move(sink));
}

void logger_t::detach(const boost::shared_ptr<receiver::sink_t>& sink) noexcept {
    const std::lock_guard guard(lock_);
    const auto found = std::ranges::find(sinks_, sink);
    if (found == sinks_.end() || !sink) return;
    if (!handing_out_) {
        sinks_.erase(found);
    } else {
        detached_.push_back(std::move(*found));  // a sink detaches one, itself perhaps: the list is being walked
    }
}

void logger_t::multiplex(std::ostream& stream) {
    auto multiplexor = boost::make_shared<cout_multiplexor_t>(
        stream, [this](std::string_view line) { log({.level = level_detail, .text = line}); });
    const std::lock_guard guard(lock_);
    retired_.reserve(retired_.size() + multiplexors_.size() + 1);  // ending the copying needs no memory
    multiplexors_.push_back(std::move(multiplexor));
}

void logger_t::clear_multiplexors() noexcept {
    const std::lock_guard guard(lock_);
    if (multiplexors_.empty()) return;
    log({.text = "Clearing collection of cout multiplexors."});
    for (; !multiplexors_.empty(); multiplexors_.pop_back()) {
        multiplexors_.back()->end();
        retired_.push_back(std::move(multiplexors_.back()));
    }
}

}  // namespace logging
