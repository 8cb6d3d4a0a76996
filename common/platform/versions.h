#pragma once

#include <string>

namespace platform {

// Returns the operating system for the log, such as "Windows 10.0.17763 (server, x64)". This is the real version, not
// the one that the system reports to older programs.
std::string os_version_text();

struct version_resource_t {
    std::string file_version;  // four numbers joined with dots
    std::string comments;      // UTF-8
};

// Returns the version resource of a program file. Members that it does not have are empty.
version_resource_t read_version_resource(const std::wstring& path);

}  // namespace platform
