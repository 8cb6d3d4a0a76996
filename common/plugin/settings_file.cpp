#include "common/plugin/settings_file.h"

#include <cstdio>
#include <memory>

#include <boost/filesystem.hpp>
#include <tinyxml.h>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/component.h"
#include "common/text/convert.h"

namespace plugin {
namespace {

using exc::format_message;
using logging::plugin_common;

struct close_file_t {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

void require_settings_file(const std::wstring& path) {
    boost::system::error_code failure;
    if (!boost::filesystem::exists(path, failure)) exc::raise("Cannot find plug-in manager configuration file");
}

// False when the file is no XML, which is logged.
bool load_document(const std::wstring& path, TiXmlDocument& document) {
    const std::string name = text::wide_to_utf8(path);
    plugin_common.info(format_message("Loading xml file [%1]", name));
    const std::unique_ptr<std::FILE, close_file_t> file(_wfopen(path.c_str(), L"rb"));
    if (!file) exc::raise(format_message("Failed to open configuration file from path: %1", name));
    if (document.LoadFile(file.get())) {
        plugin_common.info("Xml file was successfully loaded");
        return true;
    }
    if (document.ErrorId() == TiXmlBase::TIXML_ERROR_OPENING_FILE) {
        exc::raise(format_message("Failed to load configuration file: %1", name));
    }
    plugin_common.log(logging::level_warning,
                      format_message("Error due parsing xml file, code: [%1], description: [%2]",
                                     {std::to_string(document.ErrorId()), document.ErrorDesc()}));
    plugin_common.log(logging::level_warning, "Xml file wasn't loaded. Ignore it.");
    return false;
}

// Values may stand as child elements with text or as attributes; the element is looked at first.
std::string value_of(const TiXmlElement& parameters, const char* name) {
    if (const TiXmlElement* child = parameters.FirstChildElement(name)) {
        const char* value = child->GetText();
        return value == nullptr ? "" : value;
    }
    const char* value = parameters.Attribute(name);
    return value == nullptr ? "" : value;
}

std::int32_t number_of(const TiXmlElement& parameters, const char* name, std::int32_t fallback) {
    int number = 0;
    return std::sscanf(value_of(parameters, name).c_str(), "%d", &number) == 1 ? number : fallback;
}

common_settings_t settings_of(const TiXmlDocument& document) {
    const TiXmlElement& parameters = find_child_node(find_child_node(document, "Config"), "PluginParameters");
    const common_settings_t defaults;
    return {number_of(parameters, "minPluginManagerPort", defaults.minPluginManagerPort),
            number_of(parameters, "managerConnectionAttempsCount", defaults.managerConnectionAttempsCount),
            value_of(parameters, "managerLockDir"), value_of(parameters, "logsDir")};
}

void log_unreadable(const std::wstring& path, const char* reason) {
    plugin_common.log(logging::level_warning,
                      format_message("Unable to load params from file [%1]. %2",
                                     {text::wide_to_utf8(path), reason == nullptr ? "Unknown error" : reason}));
}

}  // namespace

std::wstring find_settings_file(const std::wstring& directory) try {
    const std::wstring path = (boost::filesystem::path(directory) / L"tovak_common_config.xml").wstring();
    require_settings_file(path);
    return path;
} catch (const std::exception& failure) {
    exc::rethrow_with_context(failure, "Failed to read plug-in manager configuration file");
}

common_settings_t read_settings_file(const std::wstring& path) {
    try {
        TiXmlDocument document;
        return load_document(path, document) ? settings_of(document) : common_settings_t();
    } catch (const std::exception& failure) {
        log_unreadable(path, failure.what());
    }
    return {};
}

const TiXmlElement& find_child_node(const TiXmlNode& parent, const std::string& name) {
    const TiXmlElement* child = parent.FirstChildElement(name);
    if (child == nullptr) exc::raise(format_message("There is no node with the specified name: [%1].", name));
    return *child;
}

}  // namespace plugin
