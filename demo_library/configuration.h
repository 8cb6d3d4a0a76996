// The values that the library stores for the plug-in.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace demo_library {

// A repository as the backup server describes it. A text that the server left out is returned as null.
struct repository_t {
    std::optional<std::wstring> id;
    std::optional<std::wstring> name;
    double capacity = 0;    // bytes
    double free_space = 0;  // bytes
    bool encrypted = false;
};

// The initial values are those of a host that was never configured.
struct configuration_t {
    std::wstring host;
    std::int32_t port = 0;
    std::wstring domain;
    std::wstring user_name;
    std::string protected_password;          // see protection.h; never in clear text, so an unreadable one is kept, too
    std::vector<repository_t> repositories;  // one for each backup copy, in the order of the copies
    std::int32_t parallelism = 1;
};

}  // namespace demo_library
