// The state of one run of the program.
#pragma once

#include <boost/program_options.hpp>
#include <boost/shared_ptr.hpp>

#include "conf_tool/lib_caller.h"

namespace app {

// The entry point owns it for the whole run. The destructor first unloads the configuration library, then wipes the
// password that was given on the command line.
struct CommandContext {
    CommandContext() = default;
    ~CommandContext();
    CommandContext(const CommandContext&) = delete;
    CommandContext& operator=(const CommandContext&) = delete;

    // Releases the caller. If this is its last owner, unloads the library; throws what unloading throws.
    void ReleaseCaller();

    boost::program_options::options_description options;
    boost::program_options::variables_map variables;
    boost::shared_ptr<conf_tool::CConfigToolLibCaller> caller;  // empty until a command needs the library
};

}  // namespace app
