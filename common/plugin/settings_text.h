// The content of the settings file that the plug-in's programs share.
#pragma once

#include <cstdint>
#include <string>

class TiXmlElement;
class TiXmlNode;

namespace plugin {

// The names are those of the file, including the misspelt one; the values are only logged. Fixed from outside.
struct common_settings_t {
    std::int32_t minPluginManagerPort = 6791;
    std::int32_t managerConnectionAttempsCount = 30;
    std::string managerLockDir;  // UTF-8; empty if the file has none
    std::string logsDir;         // the same
};

// Returns the settings. A value that is missing or malformed has its default; if the text is not XML, which is
// logged, all of them have. Throws what find_child_node() throws, and runtime_exc_t with what xml::find_xml_fault()
// finds.
common_settings_t parse_settings(const std::string& text);

// Returns the named child element. Throws runtime_exc_t with the name if there is none.
const TiXmlElement& find_child_node(const TiXmlNode& parent, const std::string& name);

}  // namespace plugin
