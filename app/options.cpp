#include "app/options.h"

#include "common/exc/raise.h"

namespace app {
namespace {

namespace po = boost::program_options;

void Declare(po::options_description& options) {
    using words_t = std::vector<std::string>;
    // Fixed from outside; the parenthesis of set-credentials has never been closed. One option per line:
    // clang-format off
    options.add_options()
        (option_help, "Show this help page")
        (option_show_config, "Show configuration")
        (option_wizard, "Start configuration wizard")
        (option_set_credentials, po::value<words_t>()->multitoken()->value_name("ACCOUNT [PASSWORD]"),
         "Set credentials (use username@domain format for user account")
        (option_set_host, po::value<std::string>()->value_name("HOST"), "Set backup server host name or IP address")
        (option_set_port, po::value<int>()->value_name("PORT"), "Set backup server port")
        (option_set_repositories,
         "Set Tovak repository as the backup target (up to 4 repositories can be specified for multiple copies)")
        (option_set_parallelism, po::value<int>()->value_name("CHANNELS"),
         "Set parallel processing channels count (RMAN parallelism)")
        (option_map_backup, "Map imported backup")
        (option_uninstall, "Uninstall the Tovak Plug-in for Oracle RMAN");
    // clang-format on
}

}  // namespace

void BuildOptions(CommandContext& context) {
    try {
        Declare(context.options);
    } catch (const std::exception& failure) {
        exc::rethrow_as_runtime_error(failure, "Failed to configure parser");
    }
}

}  // namespace app
