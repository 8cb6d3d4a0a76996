#pragma once

#include <mutex>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "common/logging/log_file.h"

namespace logging {

// Writes one log to the first of several files that is not locked. If a reader locks the end of that file, goes on in
// the next one.
class log_file_set_t : public receiver::sink_t {
public:
    // Opens the file. One that is not trusted (see open_log_file()) is skipped too; a warning in the log says so.
    // Throws exc::runtime_exc_t "Log paths list is empty.", exc::file_locked_exc_t "All log files are locked.", or
    // exc::win_sys_exc_t when a file cannot be opened for another reason.
    log_file_set_t(std::vector<std::wstring> paths, const size_limits_t& limits);

    // If records are missing, prints to standard error how many and why.
    ~log_file_set_t() override;

    // Returns "Name.log" and, for programs that run at the same time, "Name_2.log" to "Name_10.log".
    static std::vector<std::wstring> numbered(const std::wstring& first_path);

    void write(const line_head_t& head, const record_t& record) override;

    // Returns the path of the file in use. Any thread may ask.
    std::wstring path() const;

private:
    boost::shared_ptr<receiver::log_file_t> open_first() const;

    std::vector<std::wstring> paths_;
    size_limits_t limits_;
    mutable std::mutex mutex_;  // of the pointer
    boost::shared_ptr<receiver::log_file_t> file_;
};

}  // namespace logging
