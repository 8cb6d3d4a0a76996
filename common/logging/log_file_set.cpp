#include "common/logging/log_file_set.h"

#include <boost/make_shared.hpp>

#include "common/exc/raise.h"

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

boost::shared_ptr<receiver::log_file_t> log_file_set_t::open(const size_limits_t& limits) const {
    if (paths_.empty()) exc::raise("Log paths list is empty.");
    std::vector<std::string> skipped;
    for (const std::wstring& path : paths_) {
        try {
            const auto file = boost::make_shared<receiver::win_log_file_t>(path, limits);
            for (const std::string& reason : skipped) file->add_warning(reason);
            return file;
        } catch (const exc::file_locked_exc_t&) {
            // Another process writes there.
        } catch (const exc::runtime_exc_t& untrusted) {
            skipped.emplace_back(untrusted.what());
        }
    }
    exc::file_locked_exc_t failure;
    for (const std::string& reason : skipped) failure.add_text(reason);
    failure.add_text("All log files are locked.");
    throw failure;
}

}  // namespace logging
