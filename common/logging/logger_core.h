// The logger: takes records from any thread and hands them to its sinks, one record at a time.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <iosfwd>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "common/logging/cout_multiplexor.h"
#include "common/logging/log_lock.h"
#include "common/logging/sink.h"
#include "common/logging/time_stamp.h"

namespace logging {

class logger_t {
public:
    logger_t() = default;
    ~logger_t();
    logger_t(const logger_t&) = delete;
    logger_t& operator=(const logger_t&) = delete;

    // Has been handed to every sink when it returns, unless the level is below the filter. A record that a sink logs
    // while it is handed one follows that one; where sinks answer each such record by another, it ends after a few.
    void log(const record_t& record) noexcept;

    // The same with a bounded wait: false when the record was not handed out (see log_lock_t::try_lock_for).
    bool try_log_for(const record_t& record, std::chrono::milliseconds wait, std::uint32_t stopped_thread) noexcept;

    // From here on every log() is a try_log_for().
    void begin_bounded_waits(std::chrono::milliseconds wait, std::uint32_t stopped_thread) noexcept;

    // Records below this level are dropped.
    void set_lowest_level(unsigned level) noexcept { lowest_level_ = level; }

    void attach(boost::shared_ptr<receiver::sink_t> sink);

    // After its return the sink gets no more records from other threads.
    void detach(const boost::shared_ptr<receiver::sink_t>& sink) noexcept;

    // Copies what goes through the stream into this log. The stream outlives the logger, or the copying is ended.
    void multiplex(std::ostream& stream);

    // Ends the copying. Where there was any, logs "Clearing collection of cout multiplexors.".
    void clear_multiplexors() noexcept;

private:
    // A record that waits until the present one has been handed to all sinks.
    struct pending_t {
        unsigned level;
        bool highlighted;
        unsigned depth;
        std::string prefix;
        std::string text;
        unsigned nesting;
    };

    void hand_out(const record_t& record) noexcept;
    void postpone(const record_t& record) noexcept;
    void hand_out_pending() noexcept;
    void write_to_sinks(const record_t& record) noexcept;

    // For a lock whose owner stands still for ever in the middle of a record: the sink that it stopped in is left out.
    // False when another thread does the same at this moment.
    bool write_past_owner(const record_t& record) noexcept;

    log_lock_t lock_;
    std::atomic<unsigned> lowest_level_{level_info};
    std::atomic<bool> bounded_{false};
    std::atomic<std::uint32_t> stopped_thread_{0};
    std::atomic<std::chrono::milliseconds> bounded_wait_{};
    std::atomic_flag writing_past_owner_;

    // Under the lock.
    time_stamp_clock_t clock_;
    std::vector<boost::shared_ptr<receiver::sink_t>> sinks_;
    std::vector<boost::shared_ptr<receiver::sink_t>> detached_;  // while sinks are called
    std::deque<pending_t> pending_;
    const receiver::sink_t* busy_sink_ = nullptr;  // was given a record and has not come back
    bool handing_out_ = false;
    unsigned nesting_ = 0;
    std::vector<boost::shared_ptr<cout_multiplexor_t>> multiplexors_;
    std::vector<boost::shared_ptr<cout_multiplexor_t>> retired_;  // another thread may still be inside
};

}  // namespace logging
