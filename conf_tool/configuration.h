// The tool's own copies of what the configuration library stores.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace conf_tool {

// The edition of the host's Oracle database, as the library numbers it. Standard Edition allows one repository and no
// choice of parallelism. Every other edition, whatever its number, is Unlimited.
enum class Edition : std::int32_t { Standard = 1, Unlimited = 2 };

struct RepositoryEntry {
    std::wstring id;
    std::wstring name;
    double capacity = 0;
    double free_space = 0;
    bool encryptionEnabled = false;
};

// Returns a size in bytes as the log shows it.
std::string SizeText(double bytes);

// Everything that GetConfig returns. It contains the password, so it cannot be copied, and the destructor wipes it.
struct ConfigurationSnapshot {
    ConfigurationSnapshot() = default;
    ~ConfigurationSnapshot();
    ConfigurationSnapshot(const ConfigurationSnapshot&) = delete;
    ConfigurationSnapshot& operator=(const ConfigurationSnapshot&) = delete;

    std::wstring host;
    int port = 0;
    std::wstring user_name;
    std::wstring domain;
    std::wstring password;
    int parallelism = 0;
    std::vector<RepositoryEntry> repositories;
};

struct MapBackupResult {
    int code = 0;  // 0 is success
    std::wstring text;
};

}  // namespace conf_tool
