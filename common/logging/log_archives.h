// The archives of a log file: "Name.log.gz" is the newest, "Name.1.log.gz", "Name.2.log.gz" and so on are older.
#pragma once

#include <cstdint>
#include <string>

namespace logging {

inline constexpr const wchar_t* archive_extension = L".log.gz";

// Makes room for a newest archive: each archive before the first free place becomes one step older, and those that do
// not fit into the limit, including the new one, are deleted. Throws exc::win_sys_exc_t
// "Cannot age file. File path: [%1]. Extension: [%2]. Ages limit: [%3]." with the file that could not be moved or
// deleted.
void age_archives(const std::wstring& log_path, std::uint32_t limit);

// Puts the first size bytes of the log file into a new newest archive and keeps at most limit archives in all. Until it
// is complete and on the disk, the archive has a temporary name; what an earlier process left there is deleted. With a
// limit of 0 there is no new archive, and the old ones are deleted. Uses memory that does not depend on the size. A
// failure leaves the log as it was (archives may have aged) and throws like age_archives(), or exc::win_sys_exc_t
// "Cannot read log file [%1].", "Failed to open GZ archive [%1]." (also when the temporary file cannot be deleted),
// "Cannot close GZ archive [%1]." or "Cannot rename archive [%1].". With zlib's "Error code: %1", after the system's
// reason if there is one, these are exc::runtime_exc_t: "Failed to open GZ archive [%1].",
// "Cannot add data to the GZ archive [%1]." and "Cannot close GZ archive [%1].".
void archive_log(const std::wstring& log_path, std::uint64_t size, std::uint32_t limit);

// Whether the newest archive has exactly the content of the log, which is size bytes long: a process was killed after
// it had published the archive and before it could cut the log. False if that cannot be found out.
bool is_archived(const std::wstring& log_path, std::uint64_t size) noexcept;

// Deletes the newest archive again. Never fails.
void withdraw_archive(const std::wstring& log_path) noexcept;

}  // namespace logging
