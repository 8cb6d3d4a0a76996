#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "common/logging/log_settings.h"
#include "common/logging/sink.h"

namespace logging::receiver {

// Appends lines to a file, and moves its content into an archive when the file has reached its size limit. A record
// goes out with all its lines in one operation, complete or not at all. Where records are missing, the next one that
// can be written follows a warning "Records that could not be written to the log: %1.".
class log_file_t : public sink_t {
public:
    // Takes the sentence for a failure to archive and its cause; called under the lock of the logger. A failure is
    // reported once, until archiving works again.
    using report_t = std::function<void(std::string_view sentence, const std::exception& cause)>;

    log_file_t(const size_limits_t& limits, report_t report);

    virtual const std::wstring& path() const = 0;

    // Bytes in the file, counted: the file belongs to this object alone.
    std::uint64_t size() const { return size_; }

protected:
    void write_line(const line_t& line) override;
    void end_record() override;

    // For the size that the file has when it is opened.
    void set_size(std::uint64_t size) { size_ = size; }

    // Adds the text behind the file's end, all of it or nothing; raises on failure.
    virtual void append(std::string_view text) = 0;

    // Cuts the file to nothing, or leaves it as it was and raises.
    virtual void clear() = 0;

private:
    void put(const line_t& line);
    void put_gap(const line_t& next);
    void try_archive();
    void archive();

    size_limits_t limits_;
    report_t report_;
    std::vector<char> buffer_;  // the first lines_size_ characters are the lines of the present record
    std::size_t lines_size_ = 0;
    std::uint64_t size_ = 0;
    std::uint64_t archive_at_;  // the size at which archiving is due
    bool failure_reported_ = false;
    std::uint64_t lost_ = 0;  // records since the last one that was written
};

}  // namespace logging::receiver
