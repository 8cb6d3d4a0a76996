#pragma once

#include <string>
#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "common/logging/log_file.h"

namespace logging {

// The paths that one log may be written to.
class log_file_set_t {
public:
    explicit log_file_set_t(std::vector<std::wstring> paths) : paths_(std::move(paths)) {}

    // "Name.log" and, for programs that run at the same time, "Name_2.log" to "Name_10.log".
    static log_file_set_t numbered(const std::wstring& first_path);

    // Opens the first file that is not locked. A file that is not trusted (see require_trusted_file()) is skipped too;
    // the log that is opened says so in a warning. Throws exc::runtime_exc_t "Log paths list is empty.",
    // exc::file_locked_exc_t "All log files are locked.", or exc::win_sys_exc_t when a file cannot be opened for
    // another reason.
    boost::shared_ptr<receiver::log_file_t> open(const size_limits_t& limits) const;

private:
    std::vector<std::wstring> paths_;
};

}  // namespace logging
