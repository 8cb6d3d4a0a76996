// The commands of the command line. They throw on failure.
#pragma once

#include "app/command_context.h"

namespace app {

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

// The wizard's step and the wizard.
void SetRepository(CommandContext& context);
void StartWizard(CommandContext& context);

}  // namespace app
