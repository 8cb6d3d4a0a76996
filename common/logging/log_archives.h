// The archives of a log file: "Name.log.gz" is the newest, "Name.1.log.gz", "Name.2.log.gz" and so on are older.
#pragma once

#include <cstdint>
#include <string>

namespace logging {

inline constexpr const wchar_t* archive_extension = L".log.gz";

// Makes room for a newest archive: each archive up to the first free place becomes one step older, and those that do
// not fit into the limit, the newest one to come included, are removed. Raises exc::win_sys_exc_t
// "Cannot age file. File path: [%1]. Extension: [%2]. Ages limit: [%3].".
void age_archives(const std::wstring& log_path, std::uint32_t limit);

// Puts the first size bytes of the log file into a new newest archive, at most limit archives in all. Until it is
// complete the archive has another name, which no archive has; what an earlier process left of it is removed. With a
// limit of 0 there is no new archive, and the old ones are removed. A failure leaves log and archives as they were
// (archives may have aged) and raises what gzip_file() and age_archives() raise, or exc::win_sys_exc_t "Cannot rename
// archive [%1].".
void archive_log(const std::wstring& log_path, std::uint64_t size, std::uint32_t limit);

// Whether the newest archive holds just the content of the log, which has so many bytes: a process was ended after it
// had published the archive and before it could cut the log. What cannot be read counts as not archived.
bool is_archived(const std::wstring& log_path, std::uint64_t size) noexcept;

// Removes the newest archive again. Never fails.
void withdraw_archive(const std::wstring& log_path) noexcept;

}  // namespace logging
