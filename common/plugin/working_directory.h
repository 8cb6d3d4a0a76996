// The directory that the program works from: where the plug-in's files are linked, or otherwise the program's folder.
#pragma once

#include <string>

namespace plugin {

inline constexpr wchar_t plugin_registry_key[] = L"SOFTWARE\\Tovak\\Tovak RMAN Plugin";
inline constexpr wchar_t link_target_path_value[] = L"LinkTargetPath";

// Returns the target link path from the registry; otherwise the directory of the module that contains this code (of its
// target, if the module's path is a symbolic link); otherwise the process's current directory; otherwise an empty text.
// Logs which of them it is.
std::wstring find_working_directory();

}  // namespace plugin
