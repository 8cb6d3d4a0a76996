// The archives of a log file: "Name.log.gz" is the newest, "Name.1.log.gz", "Name.2.log.gz" and so on are older.
#pragma once

#include <cstdint>
#include <string>

namespace logging {

inline constexpr const wchar_t* archive_extension = L".log.gz";

struct freed_place_t {
    std::wstring path;     // for the newest archive
    std::string obstacle;  // what require_trusted_file() says of something else with an archive's name, or empty
};

// Makes room for a new archive: every archive before the first gap in the numbers moves up by one. Those that would
// exceed the limit, with the new one counted, are deleted. What has the name of an archive and is not trusted stays
// where it is, and its number is left out. Throws exc::win_sys_exc_t
// "Cannot age file. File path: [%1]. Extension: [%2]. Ages limit: [%3]." with the file that could not be moved or
// deleted.
freed_place_t age_archives(const std::wstring& log_path, std::uint32_t limit);

// Compresses the first size bytes of the log file into a new archive and keeps at most limit archives in all. Until it
// is complete and on the disk, the archive has a temporary name; a file that an earlier process left under that name is
// deleted, or another name taken. With a limit of 0 there is no new archive, and the old ones are deleted. The memory
// used does not depend on the size.
//
// A failure leaves the log as it was, though archives may have moved up. Throws like age_archives(), or
// exc::win_sys_exc_t "Cannot read log file [%1].", "Failed to open GZ archive [%1].", "Cannot close GZ archive [%1]."
// or "Cannot rename archive [%1].". If zlib fails, throws exc::runtime_exc_t "Failed to open GZ archive [%1].", "Cannot
// add data to the GZ archive [%1]." or "Cannot close GZ archive [%1].", after the system's reason if there is one, and
// before zlib's "Error code: %1".
freed_place_t archive_log(const std::wstring& log_path, std::uint64_t size, std::uint32_t limit);

// Returns whether the newest archive has exactly the content of the log, which is size bytes long. That is so if a
// process was killed after it had finished the archive and before it could empty the log. Returns false if the two
// cannot be compared.
bool is_archived(const std::wstring& log_path, std::uint64_t size) noexcept;

// Deletes the archive, if that is possible. Call it if the log could not be emptied after all.
void withdraw_archive(const std::wstring& archive) noexcept;

}  // namespace logging
