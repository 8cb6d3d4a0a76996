// The commands that ask the configuration library for one thing. Failures leave them as exceptions.
#pragma once

#include "app/command_context.h"

namespace app {

// Puts a new caller in direct mode into the context.
void EnsureDirectCaller(CommandContext& context);

void ShowHelp(CommandContext& context);
void ShowConfig(CommandContext& context);

// Asks for the password, unseen, when the command line names none.
void SetCredentials(CommandContext& context);

void SetBackupServer(CommandContext& context);
void SetBackupServerPort(CommandContext& context);
void SetParallelism(CommandContext& context);

// A result code other than 0 is shown and logged but is no failure of the command.
void MapBackup(CommandContext& context);

void Uninstall(CommandContext& context);

}  // namespace app
