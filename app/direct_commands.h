// The commands that call the configuration library once. They throw on failure.
#pragma once

#include "app/command_context.h"

namespace app {

// Stores a new caller in direct mode in the context.
void EnsureDirectCaller(CommandContext& context);

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

}  // namespace app
