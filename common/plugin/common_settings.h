// The settings file that the plug-in's programs share.
#pragma once

#include <string>

#include "common/plugin/settings_text.h"

namespace plugin {

// Returns the common settings from "tovak_common_config.xml" in the directory. Values that are missing or malformed, or
// all of them if there is no such file, have their defaults. Logs the values in either case. Failures are logged,
// not thrown.
common_settings_t load_common_settings(const std::wstring& directory);

}  // namespace plugin
