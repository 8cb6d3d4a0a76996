#pragma once

#include <cstdint>
#include <string>

namespace logging {

// Compresses exactly size bytes of the source into a new gzip file, with memory that does not depend on the size. The
// source may be open for writing. On failure there may be a part of the target. Raises exc::win_sys_exc_t
// "Cannot read log file [%1]." or "Failed to open GZ archive [%1].", and exc::runtime_exc_t
// "Cannot add data to the GZ archive [%1]." or "Cannot close GZ archive [%1]." with zlib's "Error code: %1", and the
// reason in front when it is the system's.
void gzip_file(const std::wstring& source, const std::wstring& target, std::uint64_t size);

// Whether the gzip file holds just the first size bytes of the source, by its checksum; false when there is no such
// archive. Raises exc::win_sys_exc_t "Cannot read log file [%1].".
bool holds_content_of(const std::wstring& archive, const std::wstring& source, std::uint64_t size);

}  // namespace logging
