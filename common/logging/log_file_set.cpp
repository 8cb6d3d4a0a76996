#include "common/logging/log_file_set.h"

#include <boost/make_shared.hpp>

#include "common/exc/raise.h"
#include "common/logging/win_log_file.h"

namespace logging {

log_file_set_t log_file_set_t::numbered(const std::wstring& first_path) {
    constexpr int last_number = 10;
    constexpr std::wstring_view extension = L".log";
    const std::wstring stem =
        first_path.ends_with(extension) ? first_path.substr(0, first_path.size() - extension.size()) : first_path;
    std::vector<std::wstring> paths{stem + L".log"};
    for (int number = 2; number <= last_number; ++number)
        paths.push_back(stem + L"_" + std::to_wstring(number) + L".log");
    return log_file_set_t(std::move(paths));
}

boost::shared_ptr<receiver::log_file_t> log_file_set_t::open(const size_limits_t& limits,
                                                             const receiver::log_file_t::report_t& report) const {
    if (paths_.empty()) exc::raise("Log paths list is empty.");
    for (const std::wstring& path : paths_) {
        try {
            return boost::make_shared<receiver::win_log_file_t>(path, limits, report);
        } catch (const exc::file_locked_exc_t&) {
            // Another process writes there.
        }
    }
    exc::raise<exc::file_locked_exc_t>("All log files are locked.");
}

}  // namespace logging
