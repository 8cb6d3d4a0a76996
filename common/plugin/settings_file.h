// The settings file that the plug-in's programs share.
#pragma once

#include <string>

#include "common/plugin/settings_text.h"

namespace plugin {

// Returns the path of the settings file in a directory. Throws runtime_exc_t "Cannot find plug-in manager configuration
// file" with "Failed to read plug-in manager configuration file" if the file does not exist.
std::wstring find_settings_file(const std::wstring& directory);

// Reads the file. Values that cannot be read keep their defaults; the failure is logged.
common_settings_t read_settings_file(const std::wstring& path);

}  // namespace plugin
