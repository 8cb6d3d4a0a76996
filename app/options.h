// The command line: its options, and which command they stand for.
#pragma once

#include <string>

#include <boost/function.hpp>

#include "app/command_context.h"

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

// Declares the ten options. Raises exc::runtime_exc_t that ends in "Failed to configure parser".
void BuildOptions(CommandContext& context);

struct Command {
    std::string method_name;
    boost::function<void()> handler;  // bound to the context, which must outlive it
};

// Parses the command line into the context and chooses one command. When several options are given, the last one in
// the order of the checks wins and the others are ignored; no option at all asks for help. Logs "Parsing incoming
// values". Raises exc::runtime_exc_t that ends in "Failed to parse incoming parameters".
Command ParseCommandLine(CommandContext& context, int argc, const char* const* argv);

// Runs the handler inside the log scope "Executing method %1". A failure is raised as exc::runtime_exc_t that ends in
// "Failed to execute method %1".
void ExecuteMethod(boost::function<void()> handler, const std::string& method_name);

}  // namespace app
