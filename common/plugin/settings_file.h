// The settings file that the plug-in's programs share.
#pragma once

#include <cstdint>
#include <string>

class TiXmlElement;
class TiXmlNode;

namespace plugin {

// The names are those of the file, the misspelt one included.
struct common_settings_t {
    std::int32_t minPluginManagerPort = 6791;
    std::int32_t managerConnectionAttempsCount = 30;
    std::string managerLockDir;  // UTF-8; empty when the file names none
    std::string logsDir;         // likewise
};

// The path of the settings file in a directory. Raises runtime_exc_t "Cannot find plug-in manager configuration file"
// with "Failed to read plug-in manager configuration file" when there is no such file.
std::wstring find_settings_file(const std::wstring& directory);

// Reads the file. What cannot be read keeps its default and is logged.
common_settings_t read_settings_file(const std::wstring& path);

// The named child element. Raises runtime_exc_t "There is no node with the specified name: [%1].".
const TiXmlElement& find_child_node(const TiXmlNode& parent, const std::string& name);

}  // namespace plugin
