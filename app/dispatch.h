// Chooses and runs the one command.
#pragma once

#include <string>

#include <boost/function.hpp>

#include "app/commands.h"

namespace app {

struct Command {
    std::string method_name;
    boost::function<void()> handler;  // bound to the context, which must outlive it
};

// Parses the command line into the context and chooses one command. If several options are given, the last one in the
// order of the checks wins and the others are ignored; without an option the command is help. Throws exc::runtime_exc_t
// with the parser's complaint, without passwords, and a sentence of its own.
Command ParseCommandLine(CommandContext& context, int argc, const char* const* argv);

// Runs the handler inside a log scope with the method's name. If it throws, throws exc::runtime_exc_t with its message
// and a sentence that names the method.
void ExecuteMethod(boost::function<void()> handler, const std::string& method_name);

}  // namespace app
