#include "app/command_context.h"

#include "app/options.h"
#include "common/logging/log_exception.h"
#include "common/platform/wipe.h"
#include "conf_tool/log_component.h"

namespace app {
namespace {

void WipeCredentials(boost::program_options::variables_map& variables) {
    const auto found = variables.find(option_set_credentials);
    if (found == variables.end()) return;
    auto* const tokens = boost::any_cast<std::vector<std::string>>(&found->second.value());
    if (tokens == nullptr) return;
    for (std::string& token : *tokens) platform::wipe(token);
}

}  // namespace

CommandContext::~CommandContext() {
    try {
        ReleaseCaller();
    } catch (const std::exception& failure) {
        logging::log_exception(conf_tool::ormacon_tool, failure);
    }
    WipeCredentials(variables);
}

void CommandContext::ReleaseCaller() {
    boost::shared_ptr<conf_tool::CConfigToolLibCaller> last;
    last.swap(caller);  // unloading is tried only once, even if it fails
    if (last && last.unique()) last->Unload();
}

}  // namespace app
