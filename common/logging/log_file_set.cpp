#include "common/logging/log_file_set.h"

#include <utility>

#include <boost/make_shared.hpp>

#include "common/exc/raise.h"
#include "common/platform/console.h"

namespace logging {

log_file_set_t::log_file_set_t(std::vector<std::wstring> paths, const size_limits_t& limits)
    : paths_(std::move(paths)), limits_(limits), file_(open_first()) {}

log_file_set_t::~log_file_set_t() {
    try {
        const std::string lost = file_->lost_records();
        if (!lost.empty()) platform::print(GetStdHandle(STD_ERROR_HANDLE), lost + "\r\n");
    } catch (const std::exception&) {
        // There is no other place to say it.
    }
}

std::vector<std::wstring> log_file_set_t::numbered(const std::wstring& first_path) {
    constexpr int last_number = 10;
    constexpr std::wstring_view extension = L".log";
    const std::wstring stem =
        first_path.ends_with(extension) ? first_path.substr(0, first_path.size() - extension.size()) : first_path;
    std::vector<std::wstring> paths{stem + L".log"};
    for (int number = 2; number <= last_number; ++number)
        paths.push_back(stem + L"_" + std::to_wstring(number) + L".log");
    return paths;
}

void log_file_set_t::write(const line_head_t& head, const record_t& record) try {
    file_->write(head, record);
} catch (const exc::file_locked_exc_t&) {
    const auto next = open_first();  // the locked file is still open, and so it is another one
    next->follow(*file_);
    next->write(head, record);
    const std::lock_guard guard(mutex_);
    file_ = next;
}

std::wstring log_file_set_t::path() const {
    const std::lock_guard guard(mutex_);
    return file_->path();
}

boost::shared_ptr<receiver::log_file_t> log_file_set_t::open_first() const {
    if (paths_.empty()) exc::raise("Log paths list is empty.");
    std::vector<std::string> skipped;
    for (const std::wstring& path : paths_) {
        try {
            const auto file = boost::make_shared<receiver::win_log_file_t>(path, limits_);
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
