#include "common/logging/win_log_file.h"

#include <utility>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/log_archives.h"
#include "common/platform/path.h"
#include "common/text/convert.h"

namespace logging::receiver {
namespace {

constexpr const char* unwritable = "Cannot write to log file. Log path: [%1].";

[[noreturn]] void raise_locked(DWORD code, const std::string& sentence) {
    exc::file_locked_exc_t failure;
    exc::add_win_error(failure, code, sentence);
    throw failure;
}

}  // namespace

win_log_file_t::win_log_file_t(const std::wstring& path, const size_limits_t& limits, report_t report)
    : log_file_t(limits, std::move(report)),
      path_(path),
      file_(CreateFileW(platform::system_path(path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                        OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)) {
    if (!file_) {
        const DWORD code = GetLastError();
        if (code == ERROR_SHARING_VIOLATION || code == ERROR_LOCK_VIOLATION) {
            raise_locked(code, with_path("Log file is locked. Log path: [%1]."));
        }
        exc::raise_win_error(code, with_path("Cannot open log file. Log path: [%1]."));
    }
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(file_.get(), &size)) {
        const DWORD code = GetLastError();
        exc::raise_win_error(code, with_path("Unable to validate log size limit. Log path: [%1]."));
    }
    set_size(static_cast<std::uint64_t>(size.QuadPart));
    if (is_archived(path_, this->size()) && cut(0)) set_size(0);
    end_last_line();
}

win_log_file_t::~win_log_file_t() { FlushFileBuffers(file_.get()); }

std::string win_log_file_t::with_path(const char* sentence) const {
    return exc::format_message(sentence, text::wide_to_utf8(path_));
}

// The file's pointer stays behind the last record while all goes well. (A write that is given its place costs several
// times as much in some environments.) What a full disk took of a record is cut off again, and written over if it
// cannot be cut off.
void win_log_file_t::append(std::string_view text) {
    if (!at_end_) move_to_end();
    DWORD written = 0;
    const bool done = WriteFile(file_.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != FALSE;
    if (done && written == text.size()) return;
    const DWORD code = done ? ERROR_DISK_FULL : GetLastError();
    at_end_ = false;
    cut(size());
    exc::raise_win_error(code, with_path(unwritable));
}

void win_log_file_t::clear() {
    if (!cut(0)) {
        const DWORD code = GetLastError();
        exc::raise_win_error(code, with_path("Cannot cut log file. Log path: [%1]."));
    }
    at_end_ = false;
}

void win_log_file_t::move_to_end() {
    LARGE_INTEGER end{};
    end.QuadPart = static_cast<LONGLONG>(size());
    if (!SetFilePointerEx(file_.get(), end, nullptr, FILE_BEGIN)) {
        const DWORD code = GetLastError();
        exc::raise_win_error(code, with_path(unwritable));
    }
    at_end_ = true;
}

bool win_log_file_t::cut(std::uint64_t size) noexcept {
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
