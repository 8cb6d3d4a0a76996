#include "common/plugin/settings_text.h"

#include <cstdio>

#include <tinyxml.h>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/plugin/log_component.h"
#include "common/xml/find_xml_fault.h"

namespace plugin {
namespace {

using exc::format_message;

// Returns false, and logs it, if the text is not XML.
bool parse(const std::string& content, TiXmlDocument& document) {
    constexpr int max_depth = 1000;
    const std::string fault = xml::find_xml_fault(content, max_depth);
    if (!fault.empty()) exc::raise(fault);
    // The parser reads past the end of a text that is truncated within a character. This gives each such step an end.
    const std::string with_ends = content + std::string(4, '\0');
    TiXmlBase::SetCondenseWhiteSpace(false);
    document.Parse(with_ends.c_str(), nullptr, TIXML_ENCODING_UTF8);
    if (!document.Error()) {
        plugin_common.info("Xml file was successfully loaded");
        return true;
    }
    plugin_common.log(logging::level_warning,
                      format_message("Error due parsing xml file, code: [%1], description: [%2]",
                                     {std::to_string(document.ErrorId()), document.ErrorDesc()}));
    plugin_common.log(logging::level_warning, "Xml file wasn't loaded. Ignore it.");
    return false;
}

// All of the element's text, without the blanks and line ends around it.
std::string text_of(const TiXmlElement& element) {
    std::string text;
    for (const TiXmlNode* node = element.FirstChild(); node != nullptr; node = node->NextSibling()) {
        if (node->ToText() != nullptr) text += node->ValueStr();
    }
    constexpr const char* blanks = " \t\r\n";
    text.erase(text.find_last_not_of(blanks) + 1);
    return text.erase(0, text.find_first_not_of(blanks));
}

// Values may be child elements with text, or attributes. The element is looked at first.
std::string value_of(const TiXmlElement& parameters, const char* name) {
    if (const TiXmlElement* child = parameters.FirstChildElement(name)) return text_of(*child);
    const char* value = parameters.Attribute(name);
    return value == nullptr ? "" : value;
}

std::int32_t number_of(const TiXmlElement& parameters, const char* name, std::int32_t fallback) {
    int number = fallback;
    // NOLINTNEXTLINE(cert-err34-c): numbers have always been read like this, even with something after them
    std::sscanf(value_of(parameters, name).c_str(), "%d", &number);
    return number;
}

common_settings_t settings_of(const TiXmlElement& parameters) {
    const common_settings_t defaults;
    return {number_of(parameters, "minPluginManagerPort", defaults.minPluginManagerPort),
            number_of(parameters, "managerConnectionAttempsCount", defaults.managerConnectionAttempsCount),
            value_of(parameters, "managerLockDir"), value_of(parameters, "logsDir")};
}

}  // namespace

common_settings_t parse_settings(const std::string& text) {
    TiXmlDocument document;
    if (!parse(text, document)) return {};
    return settings_of(find_child_node(find_child_node(document, "Config"), "PluginParameters"));
}

const TiXmlElement& find_child_node(const TiXmlNode& parent, const std::string& name) {
    const TiXmlElement* child = parent.FirstChildElement(name);
    if (child == nullptr) exc::raise(format_message("There is no node with the specified name: [%1].", name));
    return *child;
}

}  // namespace plugin
