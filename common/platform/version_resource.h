#pragma once

#include <string>

namespace platform {

struct version_resource_t {
    std::string file_version;  // four numbers joined with dots
    std::string comments;      // UTF-8
};

// Returns the version resource of a program file. Members that it does not have are empty.
version_resource_t read_version_resource(const std::wstring& path);

}  // namespace platform
