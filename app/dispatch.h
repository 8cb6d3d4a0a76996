// Chooses and runs the one command.
#pragma once

#include <string>

#include <boost/function.hpp>

#include "app/command_context.h"

namespace app {

struct Command {
    std::string method_name;
    boost::function<void()> handler;  // bound to the context, which must outlive it
};

// Parses the command line into the context and chooses one command. If several options are given, the last one in the
// order of the checks wins and the others are ignored; without an option the command is help. Logs "Parsing incoming
// values". Throws exc::runtime_exc_t that ends in "Failed to parse incoming parameters".
Command ParseCommandLine(CommandContext& context, int argc, const char* const* argv);

// Runs the handler inside the log scope "Executing method %1". If the handler throws, throws exc::runtime_exc_t that
// ends in "Failed to execute method %1".
void ExecuteMethod(boost::function<void()> handler, const std::string& method_name);

}  // namespace app
