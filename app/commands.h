// The commands of the command line, and the state of the run that they share.
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

// The commands throw on failure.
void ShowHelp(CommandContext& context);
void ShowConfig(CommandContext& context);

// Asks for the password, with hidden input, if the command line has none.
void SetCredentials(CommandContext& context);

void SetBackupServer(CommandContext& context);
void SetBackupServerPort(CommandContext& context);
void SetParallelism(CommandContext& context);

// Shows and logs a result code other than 0; the command itself does not fail.
void MapBackup(CommandContext& context);

void Uninstall(CommandContext& context);

// The wizard's question about repositories alone, and the whole wizard.
void SetRepository(CommandContext& context);
void StartWizard(CommandContext& context);

}  // namespace app
