// The archives of a log file: "Name.log.gz" is the newest, "Name.1.log.gz", "Name.2.log.gz" and so on are older.
#pragma once

#include <cstdint>
#include <string>

namespace logging {

struct new_archive_t {
    std::wstring path;
    std::string obstacle;  // what require_trusted_file() says of something else with an archive's name, or empty
};

// Compresses the first size bytes of the log file into a new archive, and keeps at most limit archives in all: with a
// limit of 0, none. Every archive before the first gap in the numbers moves up by one; those beyond the limit are
// deleted. What has the name of an archive and is not trusted stays where it is, and its number is left out.
//
// Until it is complete and on the disk, the archive has a temporary name; a file that an earlier process left under
// that name is deleted, or another name taken. The memory used does not depend on the size.
//
// A failure leaves the log as it was, though archives may have moved up. Throws exc::win_sys_exc_t, or
// exc::runtime_exc_t if zlib fails, each with a sentence that says what could not be done with which file.
new_archive_t archive_log(const std::wstring& log_path, std::uint64_t size, std::uint32_t limit);

// Returns whether the newest archive has exactly the content of the log, which is size bytes long. That is so if a
// process was killed after it had finished the archive and before it could empty the log. Returns false if the two
// cannot be compared.
bool is_archived(const std::wstring& log_path, std::uint64_t size) noexcept;

}  // namespace logging
