#pragma once

#include "common/logging/log_file.h"
#include "common/platform/owned.h"

namespace logging::receiver {

// Holds its file open with read sharing only: it has one writer.
class win_log_file_t : public log_file_t {
public:
    // Opens or creates the file; its directory exists. Cuts a log that an earlier process archived and was ended before
    // it cut it, and ends a line that an earlier process was ended in. Raises exc::file_locked_exc_t
    // "Log file is locked. Log path: [%1]." when the file is open elsewhere, exc::win_sys_exc_t
    // "Cannot open log file. Log path: [%1]." or "Unable to validate log size limit. Log path: [%1].".
    win_log_file_t(const std::wstring& path, const size_limits_t& limits, report_t report);
    ~win_log_file_t() override;

    const std::wstring& path() const override { return path_; }

protected:
    void append(std::string_view text) override;
    void clear() override;

private:
    void move_to_end();
    bool cut(std::uint64_t size) noexcept;
    void end_last_line() noexcept;
    std::string with_path(const char* sentence) const;

    std::wstring path_;
    platform::unique_file file_;
    bool at_end_ = false;  // the file's pointer is at its end
};

}  // namespace logging::receiver
