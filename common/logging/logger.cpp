#include "common/logging/logger.h"

#include <climits>
#include <mutex>
#include <utility>

#include <boost/make_shared.hpp>

#include "common/logging/output_sinks.h"
#include "common/win32.h"

namespace logging {
namespace {

logger_t* create_process_logger() {
    auto* const created = new logger_t;
    created->attach(boost::make_shared<receiver::COutputDebugStringLog>());
    return created;
}

}  // namespace

// The first limited wait looks for a function of the system, under the loader's lock: in a crash, another thread may
// hold that.
logger_t::logger_t() {
    if (lock_.try_lock_for(std::chrono::milliseconds(0))) lock_.unlock();
}

logger_t::~logger_t() { clear_multiplexors(); }

void logger_t::log(const record_t& record) noexcept {
    if (record.level < lowest_level_.load(std::memory_order_relaxed)) return;
    const std::lock_guard guard(lock_);
    const line_head_t head{clock_.now(), crashed_thread_ != 0 ? crashed_thread_ : GetCurrentThreadId()};
    for (attached_t& attached : sinks_) {
        if (std::exchange(attached.busy, true)) continue;
        try {
            attached.sink->write(head, record);
        } catch (...) {
            // There is no place to report that one of the sinks failed.
        }
        attached.busy = false;
    }
}

void logger_t::attach(boost::shared_ptr<receiver::sink_t> sink) {
    const std::lock_guard guard(lock_);
    sinks_.push_back({std::move(sink)});
}

void logger_t::detach(const boost::shared_ptr<receiver::sink_t>& sink) noexcept {
    const std::lock_guard guard(lock_);
    std::erase_if(sinks_, [&](const attached_t& attached) { return attached.sink == sink; });
}

void logger_t::multiplex(std::ostream& stream) {
    const std::lock_guard guard(lock_);
    multiplexors_.push_back(boost::make_shared<cout_multiplexor_t>(
        stream, [this](std::string_view lines) { log({.level = level_detail, .text = lines}); }));
}

void logger_t::clear_multiplexors() noexcept {
    const std::lock_guard guard(lock_);
    log({.text = "Clearing collection of cout multiplexors."});
    while (!multiplexors_.empty()) multiplexors_.pop_back();
}

void logger_t::seize(std::uint32_t crashed_thread, std::chrono::milliseconds wait) noexcept {
    if (lock_.try_lock_for(wait)) {
        crashed_thread_ = crashed_thread;
    } else {
        lowest_level_ = UINT_MAX;  // above all levels
    }
}

logger_t& process_logger() noexcept {
    static logger_t* const logger = create_process_logger();
    return *logger;
}

}  // namespace logging
