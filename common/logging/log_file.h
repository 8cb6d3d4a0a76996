#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "common/logging/log_line.h"
#include "common/logging/log_settings.h"
#include "common/platform/owned.h"

namespace logging::receiver {

// Appends lines to a file, and moves its content into an archive when the file has reached its size limit. All lines of
// a record are written in one operation, completely or not at all. The log reports its own problems, as warnings before
// the next record that can be written: why it cannot be archived, only once until archiving works again, and how many
// records are missing.
class log_file_t : public sink_t {
public:
    explicit log_file_t(const size_limits_t& limits);

    void write(const line_head_t& head, const record_t& record) override;

    // Adds a warning that is written before the next record.
    void add_warning(std::string_view text);

    // Goes on for a file to which the current record could not be written, because it is locked: takes over its
    // warnings and lost records, and warns of the lock.
    void follow(const log_file_t& locked);

    // Returns how many records could not be written, and why the last of them could not; an empty text if none is
    // missing.
    std::string lost_records() const;

    virtual const std::wstring& path() const = 0;

    // Returns the size of the file in bytes. It is counted, since only this object writes to the file.
    std::uint64_t size() const { return size_; }

protected:
    void write_line(const line_t& line) override;

    // Sets the size that an opened file already has.
    void set_size(std::uint64_t size) { size_ = size; }

    // Appends the whole text, or throws and appends nothing.
    virtual void append(std::string_view text) = 0;

    // Empties the file, or throws and leaves it as it was.
    virtual void clear() = 0;

private:
    void archive_when_due();
    void archive();

    size_limits_t limits_;
    std::string lines_;     // of the current record
    std::string warnings_;  // joined with "\n"
    std::uint64_t size_ = 0;
    std::uint64_t archive_at_;  // the size at which archiving is due
    bool failure_reported_ = false;
    std::uint64_t lost_ = 0;  // records since the last one that was written
    std::string failure_;     // of the last one that was not
};

// Keeps its file open and lets others only read it, so that the file has one writer.
class win_log_file_t : public log_file_t {
public:
    // Opens or creates the file in an existing folder, without following a link. If an earlier process was killed after
    // it had archived the log and before it could empty it, empties it now; if one was killed within a line, ends that
    // line. Throws exc::file_locked_exc_t if the file is in use, what open_log_file() throws, and exc::win_sys_exc_t.
    win_log_file_t(const std::wstring& path, const size_limits_t& limits);

    const std::wstring& path() const override { return path_; }

protected:
    // Throws exc::file_locked_exc_t like the constructor if a reader has locked the end of the file.
    void append(std::string_view text) override;
    void clear() override;

private:
    void move_to_end();
    bool truncate(std::uint64_t size) noexcept;
    void end_last_line() noexcept;

    std::wstring path_;
    platform::unique_file file_;
    bool at_end_ = false;  // the file's pointer is at its end
};

}  // namespace logging::receiver

namespace logging {

// Writes one log to the first of several files that is not locked. If a reader locks the end of that file, goes on in
// the next one.
class log_file_set_t : public receiver::sink_t {
public:
    // Opens the file. One that is not trusted (see open_log_file()) is skipped too; a warning in the log says so.
    // Throws exc::file_locked_exc_t if all are locked or skipped, exc::runtime_exc_t if there are no paths, and
    // exc::win_sys_exc_t if a file cannot be opened for another reason.
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
    boost::shared_ptr<receiver::log_file_t> file_;  // exchanged atomically
};

}  // namespace logging
