// What the administrator can set for logging, in the product's registry key.
#pragma once

#include <cstdint>
#include <string>

namespace logging {

struct size_limits_t {
    std::uint64_t log_size = 15'728'640;  // bytes; 0: the log grows without limit
    std::uint32_t archive_count = 10;
};

// "LogDirectory", or without it the folder "Tovak\Backup" of the common application data. Raises
// exc::win_sys_exc_t "Cannot get the common application-data folder.".
std::wstring base_log_directory();

// The folder below it, which holds logs and dumps. Raises as base_log_directory() does.
std::wstring log_folder_path(const std::wstring& folder);

// "AgentMaxLogSize" (32 or 64 bits) and "AgentMaxLogCount" (32 bits, at most 1000 count); both defaults when one of
// them is missing or has another type.
size_limits_t read_size_limits();

// The same, read once in the life of the process.
const size_limits_t& process_size_limits();

}  // namespace logging
