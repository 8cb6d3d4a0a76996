// The configuration of this host: its values, their XML elements, and the state file that stores it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "demo_library/xml.h"

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
    std::string protected_password;          // see password.h; never in clear text, so an unreadable one is kept, too
    std::vector<repository_t> repositories;  // one for each backup copy, in the order of the copies
    std::int32_t parallelism = 1;
};

// These elements are those of the state file, the exported settings and the scenario.

// Returns all children named Repository, in their order.
std::vector<repository_t> read_repositories(const TiXmlElement& parent);

// Writes everything except the password. Returns the element of the account.
TiXmlElement& write_configuration(TiXmlElement& root, const configuration_t& configuration);

// The state file is OrmaconDemoState.xml in the library's folder, or the file that the environment variable
// ORMACON_DEMO_STATE names. A lock file beside it (with ".lock" appended) lets only one process use it at a time; only
// remove_state() removes the lock file. On failure, the following functions throw error_t with the path, also if
// another process holds the lock for five seconds.

std::wstring state_path();

// Returns the initial values if there is no file: the host has not been configured.
configuration_t load_state();

// Loads the configuration, calls change with it, and saves it. No other process can change it in between. If change
// throws, nothing is saved.
void change_state(const std::function<void(configuration_t&)>& change);

// Removes the file, and the temporary files of processes that were killed while they wrote it.
void remove_state();

}  // namespace demo_library
