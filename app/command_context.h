// What one run of the program works with.
#pragma once

#include <boost/program_options.hpp>
#include <boost/shared_ptr.hpp>

#include "conf_tool/lib_caller.h"

namespace app {

// Owned by the entry point for the whole run. Its members go in reverse order: the configuration library is unloaded
// first. What was typed as a password is wiped at the end.
struct CommandContext {
    CommandContext() = default;
    ~CommandContext();
    CommandContext(const CommandContext&) = delete;
    CommandContext& operator=(const CommandContext&) = delete;

    // Releases the caller. As its last owner it unloads the library and raises what unloading raises.
    void ReleaseCaller();

    boost::program_options::options_description options;
    boost::program_options::variables_map variables;
    boost::shared_ptr<conf_tool::CConfigToolLibCaller> caller;  // empty until a command needs the library
};

}  // namespace app
