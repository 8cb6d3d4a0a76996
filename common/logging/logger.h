// The logger: takes records from any thread and passes them to its sinks, one record at a time.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <mutex>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "common/logging/cout_multiplexor.h"
#include "common/logging/log_line.h"

namespace logging {

class logger_t {
public:
    logger_t();
    ~logger_t();
    logger_t(const logger_t&) = delete;
    logger_t& operator=(const logger_t&) = delete;

    // Passes the record to every sink, unless its level is below the lowest one that is logged. A record that a sink
    // itself logs, while it is being called, skips that sink. Blocks while another thread logs.
    void log(const record_t& record) noexcept;

    // Records below this level are dropped.
    void set_lowest_level(unsigned level) noexcept { lowest_level_ = level; }

    // Once detach() has returned, the sink gets no more records. A sink must not call attach() or detach().
    void attach(boost::shared_ptr<receiver::sink_t> sink);
    void detach(const boost::shared_ptr<receiver::sink_t>& sink) noexcept;

    // Copies what is written to the stream into this log, at level 0, until clear_multiplexors() is called. The stream
    // must still exist then, and no other thread may use it during either of the two calls.
    void multiplex(std::ostream& stream);

    // Says in the log that it ends the copying, and ends it.
    void clear_multiplexors() noexcept;

    // Called by the thread that handles a crash, before it logs. Waits for the log's lock at most this long and keeps
    // it for good: other threads that log block. Records of the handling thread then carry crashed_thread (a Win32
    // thread id). They skip a sink that the crash happened in; the other sinks get them. When the lock is not available
    // in time, the log is silent from then on: every record of every thread is dropped, and nothing waits for the log.
    // There is no way back: the process must end without running destructors of static objects (TerminateProcess).
    void seize(std::uint32_t crashed_thread, std::chrono::milliseconds wait) noexcept;

private:
    struct attached_t {
        boost::shared_ptr<receiver::sink_t> sink;
        bool busy = false;  // the sink is being called
    };

    std::recursive_timed_mutex lock_;
    std::atomic<unsigned> lowest_level_{level_info};

    // Guarded by the lock.
    std::uint32_t crashed_thread_ = 0;
    time_stamp_clock_t clock_;
    std::vector<attached_t> sinks_;
    std::vector<boost::shared_ptr<cout_multiplexor_t>> multiplexors_;
};

// Returns the one logger of the process, which every component logs to. The debugger output is attached to it from the
// start. It is never destroyed, because static objects log while the process ends.
logger_t& process_logger() noexcept;

}  // namespace logging
