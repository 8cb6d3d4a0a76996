// The options of the command line.
#pragma once

#include "app/commands.h"

namespace app {

inline constexpr char option_help[] = "help";
inline constexpr char option_show_config[] = "show-config";
inline constexpr char option_wizard[] = "wizard";
inline constexpr char option_set_credentials[] = "set-credentials";
inline constexpr char option_set_host[] = "set-host";
inline constexpr char option_set_port[] = "set-port";
inline constexpr char option_set_repositories[] = "set-repositories";
inline constexpr char option_set_parallelism[] = "set-parallelism";
inline constexpr char option_map_backup[] = "map-backup";
inline constexpr char option_uninstall[] = "uninstall";

// Declares the options in the context. Throws exc::runtime_exc_t.
void BuildOptions(CommandContext& context);

}  // namespace app
