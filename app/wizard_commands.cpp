#include "app/wizard_commands.h"

#include <boost/make_shared.hpp>

#include "app/direct_commands.h"
#include "wizard/config_tool_wizard.h"

namespace app {
namespace {

// This command does not ask the library for the edition; the limit of Standard Edition does not apply to it.
constexpr int unlimited_edition = 2;

}  // namespace

void SetRepository(CommandContext& context) {
    EnsureDirectCaller(context);
    wizard::CConfigToolWizard(context.caller, unlimited_edition).AskRepositories();
}

void StartWizard(CommandContext& context) {
    context.caller = boost::make_shared<conf_tool::CConfigToolLibCaller>(conf_tool::CallerMode::Wizard);
    wizard::CConfigToolWizard(context.caller).StartWizard();
}

}  // namespace app
