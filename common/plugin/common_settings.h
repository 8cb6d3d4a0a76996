#pragma once

#include <string>

#include "common/plugin/settings_file.h"

namespace plugin {

// The common settings from "tovak_common_config.xml" in the directory, or their defaults where the file or a value is
// missing or malformed; either way the values in force are logged. Never ends the caller's work.
common_settings_t load_common_settings(const std::wstring& directory);

}  // namespace plugin
