// The commands that run the wizard or a step of it.
#pragma once

#include "app/command_context.h"

namespace app {

void SetRepository(CommandContext& context);
void StartWizard(CommandContext& context);

}  // namespace app
