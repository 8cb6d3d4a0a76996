// The settings file that the plug-in's programs share.
#pragma once

#include <string>

#include "common/plugin/settings_text.h"

namespace plugin {

// The path of the settings file in a directory. Raises runtime_exc_t "Cannot find plug-in manager configuration file"
// with "Failed to read plug-in manager configuration file" when there is no such file.
std::wstring find_settings_file(const std::wstring& directory);

// Reads the file. What cannot be read keeps its default and is logged.
common_settings_t read_settings_file(const std::wstring& path);

}  // namespace plugin
