#include "app/dispatch.h"

#include <array>

#include <boost/bind/bind.hpp>

#include "app/concealment.h"
#include "app/options.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/method_scope.h"
#include "common/platform/wipe.h"
#include "conf_tool/log_component.h"

namespace app {
namespace {

namespace po = boost::program_options;

struct Check {
    const char* option;
    const char* method_name;
    void (*handler)(CommandContext& context);
};

// In the order of the checks, which is not that of the help page. The last one wins: fixed from outside.
constexpr std::array checks{
    Check{option_help, "ShowHelp", ShowHelp},
    Check{option_show_config, "ShowConfig", ShowConfig},
    Check{option_set_credentials, "SetCredentials", SetCredentials},
    Check{option_set_host, "SetBackupServer", SetBackupServer},
    Check{option_set_port, "SetBackupServerPort", SetBackupServerPort},
    Check{option_set_repositories, "SetRepository", SetRepository},
    Check{option_wizard, "StartWizard", StartWizard},
    Check{option_set_parallelism, "SetParallelism", SetParallelism},
    Check{option_map_backup, "MapBackup", MapBackup},
    Check{option_uninstall, "Uninstall", Uninstall},
};

// The parser's result has copies of every word, possibly a password. The copies that the parser itself drops are out of
// reach.
void WipeWords(po::parsed_options& parsed) {
    for (auto& option : parsed.options) {
        for (std::string& word : option.value) platform::wipe(word);
        for (std::string& word : option.original_tokens) platform::wipe(word);
    }
}

// The default style. A parser rejects a stray word only if it knows that there are no positional arguments.
po::parsed_options Parse(const CommandContext& context, int argc, const char* const* argv) {
    const po::positional_options_description none;
    return po::command_line_parser(argc, argv).options(context.options).positional(none).run();
}

void StoreCommandLine(CommandContext& context, int argc, const char* const* argv) {
    po::parsed_options parsed = Parse(context, argc, argv);
    try {
        po::store(parsed, context.variables);
    } catch (...) {
        WipeWords(parsed);
        throw;
    }
    WipeWords(parsed);
}

bool Applies(const Check& check, const po::variables_map& variables) {
    return variables.count(check.option) != 0 || (check.option == option_help && variables.empty());
}

Command Choose(CommandContext& context) {
    Command chosen;
    for (const Check& check : checks) {
        if (!Applies(check, context.variables)) continue;
        chosen = {check.method_name, boost::bind(check.handler, boost::ref(context))};
    }
    if (!chosen.handler) exc::raise("Unexpected command");  // cannot happen; fixed from outside
    return chosen;
}

}  // namespace

Command ParseCommandLine(CommandContext& context, int argc, const char* const* argv) {
    logging::method_scope_t scope(conf_tool::ormacon_tool, "Parsing incoming values");
    try {
        StoreCommandLine(context, argc, argv);
        Command chosen = Choose(context);
        scope.succeed();
        return chosen;
    } catch (const po::error& failure) {
        exc::runtime_exc_t complaint;
        complaint.add_text(ConcealCredentials(failure.what(), argc, argv));
        exc::rethrow_as_runtime_error(complaint, "Failed to parse incoming parameters");
    } catch (const std::exception& failure) {
        exc::rethrow_as_runtime_error(failure, "Failed to parse incoming parameters");
    }
}

void ExecuteMethod(boost::function<void()> handler, const std::string& method_name) {
    logging::method_scope_t scope(conf_tool::ormacon_tool, exc::format_message("Executing method %1", method_name));
    try {
        handler();
        scope.succeed();
        handler.clear();  // released as soon as it has succeeded: fixed from outside
    } catch (const std::exception& failure) {
        exc::rethrow_as_runtime_error(failure, exc::format_message("Failed to execute method %1", method_name));
    }
}

}  // namespace app
