// The directory that the program works from: where the plug-in's files are linked, or else where the program lies.
#pragma once

#include <string>

namespace plugin {

inline constexpr wchar_t plugin_registry_key[] = L"SOFTWARE\\Tovak\\Tovak RMAN Plugin";
inline constexpr wchar_t link_target_path_value[] = L"LinkTargetPath";

// The target link path of the registry, else the directory of the module that this code runs in (of its target, when
// the module's path is a symbolic link). When that cannot be found either, the process's current directory for the
// time being, and nothing at the very last. Logs which of them it was.
std::wstring get_current_directory();

}  // namespace plugin
