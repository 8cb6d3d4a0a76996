#include "common/logging/log_file.h"

#include <algorithm>
#include <utility>

#include <boost/make_shared.hpp>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/log_archives.h"
#include "common/platform/console.h"
#include "common/platform/file_trust.h"
#include "common/platform/path.h"

namespace logging::receiver {
namespace {

constexpr const char* lost_sentence = "Records that could not be written to the log: %1.";
constexpr const char* unwritable = "Cannot write to log file. Log path: [%1].";

[[noreturn]] void raise_locked(DWORD code, const std::wstring& path) {
    exc::file_locked_exc_t failure;
    const std::string sentence = "Log file is locked. Log path: [%1].";
    exc::add_win_error(failure, code, exc::format_message(sentence, encoding::wide_to_utf8(path)));
    throw failure;
}

}  // namespace

log_file_t::log_file_t(const size_limits_t& limits) : limits_(limits), archive_at_(limits.log_size) {}

void log_file_t::write(const line_head_t& head, const record_t& record) try {
    constexpr std::size_t usual_capacity = 65'536;
    const std::uint64_t lost = lost_++;  // this one too, until it has been written
    archive_when_due();
    lines_.clear();
    const auto warn = [&](std::string_view text) { sink_t::write(head, {.level = level_warning, .text = text}); };
    if (!warnings_.empty()) warn(warnings_);
    if (lost > 0) warn(exc::format_message(lost_sentence, std::to_string(lost)));
    sink_t::write(head, record);
    append(lines_);
    lost_ = 0;
    size_ += lines_.size();
    warnings_.clear();
    if (lines_.capacity() > usual_capacity) std::string().swap(lines_);
} catch (const std::exception& cause) {
    failure_ = cause.what();
    throw;
}

void log_file_t::follow(const log_file_t& locked) {
    lost_ = locked.lost_ - 1;
    add_warning(locked.warnings_);
    add_warning(locked.failure_);
}

std::string log_file_t::lost_records() const {
    if (lost_ == 0) return {};
    return exc::format_message(lost_sentence, std::to_string(lost_)) + " " + failure_.substr(0, failure_.find('\n'));
}

void log_file_t::write_line(const line_t& line) {
    append_file_line(lines_, line);
    lines_ += "\r\n";
}

void log_file_t::add_warning(std::string_view text) {
    if (!warnings_.empty() && !text.empty()) warnings_ += '\n';
    warnings_.append(text);
}

void log_file_t::archive_when_due() {
    if (limits_.log_size == 0 || size_ < archive_at_) return;
    try {
        archive();
        archive_at_ = limits_.log_size;
        failure_reported_ = false;
    } catch (const std::exception& cause) {
        archive_at_ = size_ + std::max<std::uint64_t>(limits_.log_size / 10, 1);
        if (std::exchange(failure_reported_, true)) return;
        add_warning(exc::format_message("Cannot compress log file. Log: [%1].", encoding::wide_to_utf8(path())));
        add_warning(cause.what());
    }
}

void log_file_t::archive() {
    const new_archive_t archive = archive_log(path(), size_, limits_.archive_count);
    add_warning(archive.obstacle);
    try {
        clear();
    } catch (const std::exception&) {
        DeleteFileW(platform::system_path(archive.path).c_str());  // or else the lines are kept twice
        throw;
    }
    size_ = 0;
}

win_log_file_t::win_log_file_t(const std::wstring& path, const size_limits_t& limits)
    : log_file_t(limits), path_(path) {
    auto [file, existed] = platform::open_log_file(path);
    const DWORD code = GetLastError();
    if (!file && (code == ERROR_SHARING_VIOLATION || code == ERROR_LOCK_VIOLATION)) raise_locked(code, path_);
    if (!file) exc::raise_path_error(code, "Cannot open log file. Log path: [%1].", path_);
    file_ = std::move(file);
    if (!existed) return;
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(file_.get(), &size))
        exc::raise_path_error(GetLastError(), "Unable to validate log size limit. Log path: [%1].", path_);
    set_size(static_cast<std::uint64_t>(size.QuadPart));
    if (is_archived(path_, this->size()) && truncate(0)) set_size(0);
    end_last_line();
}

// The file's pointer stays after the last record while all goes well. (A write at a given offset costs several times as
// much in some environments.) What a full disk took of a record is truncated again, or written over if that fails.
void win_log_file_t::append(std::string_view text) {
    if (!at_end_) move_to_end();
    DWORD written = 0;
    const bool done = WriteFile(file_.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != FALSE;
    if (done && written == text.size()) return;
    const DWORD code = done ? ERROR_DISK_FULL : GetLastError();
    at_end_ = false;
    truncate(size());
    if (code == ERROR_LOCK_VIOLATION) raise_locked(code, path_);
    exc::raise_path_error(code, unwritable, path_);
}

void win_log_file_t::clear() {
    if (!truncate(0)) exc::raise_path_error(GetLastError(), "Cannot cut log file. Log path: [%1].", path_);
    at_end_ = false;
}

void win_log_file_t::move_to_end() {
    LARGE_INTEGER end{};
    end.QuadPart = static_cast<LONGLONG>(size());
    if (!SetFilePointerEx(file_.get(), end, nullptr, FILE_BEGIN))
        exc::raise_path_error(GetLastError(), unwritable, path_);
    at_end_ = true;
}

bool win_log_file_t::truncate(std::uint64_t size) noexcept {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    return SetFileInformationByHandle(file_.get(), FileEndOfFileInfo, &end, sizeof end) != FALSE;
}

void win_log_file_t::end_last_line() noexcept {
    LARGE_INTEGER place{};
    place.QuadPart = static_cast<LONGLONG>(size()) - 1;
    char last = '\n';
    DWORD count = 0;
    const bool read = SetFilePointerEx(file_.get(), place, nullptr, FILE_BEGIN) &&
                      ReadFile(file_.get(), &last, sizeof last, &count, nullptr);
    if (read && last != '\n' && WriteFile(file_.get(), "\r\n", 2, &count, nullptr)) set_size(size() + count);
}

}  // namespace logging::receiver

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
    const std::wstring stem = first_path.substr(0, first_path.rfind(L".log"));
    std::vector<std::wstring> paths{first_path};
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
    boost::atomic_store(&file_, next);
}

std::wstring log_file_set_t::path() const { return boost::atomic_load(&file_)->path(); }

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
