#include "app/commands.h"

#include <iostream>
#include <sstream>

#include <boost/assert.hpp>
#include <boost/make_shared.hpp>

#include "app/options.h"
#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/logging/log_exception.h"
#include "common/platform/wipe.h"
#include "conf_tool/log_component.h"
#include "wizard/answers.h"
#include "wizard/config_tool_wizard.h"
#include "wizard/console.h"
#include "wizard/shown_text.h"

namespace app {
namespace {

using conf_tool::CallerMode;
using conf_tool::CConfigToolLibCaller;
using conf_tool::ormacon_tool;
using exc::format_message;
using wizard::PrintToConsole;
using wizard::ShownValue;

CConfigToolLibCaller& Caller(CommandContext& context) {
    BOOST_ASSERT(context.caller);
    return *context.caller;
}

template <class Value>
Value& ValueOf(CommandContext& context, const char* option) {
    return context.variables.find(option)->second.as<Value>();
}

void PrintSetting(const wchar_t* label, const std::wstring& value) {
    PrintToConsole(label + ShownValue(value) + L"\n");
}

void PrintRepositories(const std::vector<conf_tool::RepositoryEntry>& repositories) {
    PrintToConsole(L"Repository: \n");
    for (std::size_t i = 0; i < repositories.size(); ++i) {
        PrintToConsole(std::to_wstring(i + 1) + L". " + ShownValue(repositories[i].name) + L"\n");
    }
}

std::wstring AskPassword(const std::wstring& account) {
    PrintToConsole(L"Enter password for " + ShownValue(account) + L": ");
    return wizard::ReadFromConsole(true);
}

// The second word, or what the user types. Further words are ignored.
std::wstring PasswordFor(const std::wstring& account, const std::vector<std::string>& words) {
    return words.size() >= 2 ? encoding::utf8_to_wide(words[1]) : AskPassword(account);
}

void WipeCredentials(boost::program_options::variables_map& variables) {
    const auto found = variables.find(option_set_credentials);
    if (found == variables.end()) return;
    auto* const tokens = boost::any_cast<std::vector<std::string>>(&found->second.value());
    if (tokens == nullptr) return;
    for (std::string& token : *tokens) platform::wipe(token);
}

// Stores a new caller in direct mode in the context.
void EnsureDirectCaller(CommandContext& context) {
    context.caller = boost::make_shared<CConfigToolLibCaller>(CallerMode::Direct);
}

}  // namespace

CommandContext::~CommandContext() {
    try {
        ReleaseCaller();
    } catch (const std::exception& failure) {
        logging::log_exception(ormacon_tool, failure);
    }
    WipeCredentials(variables);
}

void CommandContext::ReleaseCaller() {
    boost::shared_ptr<CConfigToolLibCaller> last;
    last.swap(caller);  // unloading is tried only once, even if it fails
    if (last && last.unique()) last->Unload();
}

void ShowHelp(CommandContext& context) {
    ormacon_tool.info("Executing ShowHelp command.");
    boost::program_options::options_description shown(80, 40);
    for (const auto& option : context.options.options()) {
        if (option->long_name() != option_uninstall) shown.add(option);
    }
    // Composed first: the formatter would write each character to a console by itself.
    std::ostringstream page;
    page << shown;
    std::cout << page.str() << std::endl;
}

void ShowConfig(CommandContext& context) {
    EnsureDirectCaller(context);
    ormacon_tool.info("Executing ShowConfig command.");
    conf_tool::ConfigurationSnapshot config;
    Caller(context).GetConfig(config);
    PrintSetting(L"Backup server: ", config.host);
    PrintSetting(L"Port: ", std::to_wstring(config.port));
    PrintSetting(L"User name: ", config.user_name);
    PrintSetting(L"Domain name: ", config.domain);
    PrintSetting(L"Parallelism: ", std::to_wstring(config.parallelism));
    PrintRepositories(config.repositories);
}

void SetCredentials(CommandContext& context) {
    EnsureDirectCaller(context);
    const auto& words = ValueOf<std::vector<std::string>>(context, option_set_credentials);
    const std::wstring account_text = encoding::utf8_to_wide(words.front());
    std::wstring password = PasswordFor(account_text, words);
    const platform::wipe_at_exit_t wipe_password(password);
    const wizard::Account account = wizard::SplitAccount(account_text);
    ormacon_tool.info(format_message("Executing SetCredentials command, newDomainAndUsername = [%1]", words.front()));
    Caller(context).SetCredentials(account.domain, account.user_name, password);
}

void SetBackupServer(CommandContext& context) {
    EnsureDirectCaller(context);
    const auto& host = ValueOf<std::string>(context, option_set_host);
    ormacon_tool.info(format_message("Executing SetBackupServer command, host = [%1]", host));
    Caller(context).SetHost(encoding::utf8_to_wide(host));
}

void SetBackupServerPort(CommandContext& context) {
    EnsureDirectCaller(context);
    const int port = ValueOf<int>(context, option_set_port);
    // The name in this line is fixed from outside.
    ormacon_tool.info(format_message("Executing SetNetworkPort command, port = [%1]", std::to_string(port)));
    Caller(context).SetPort(port);
}

void SetParallelism(CommandContext& context) {
    EnsureDirectCaller(context);
    const int value = ValueOf<int>(context, option_set_parallelism);
    ormacon_tool.info(format_message("Executing SetParallelism command, parallelism = [%1]", std::to_string(value)));
    Caller(context).SetParallelism(value);
}

void MapBackup(CommandContext& context) {
    EnsureDirectCaller(context);
    const conf_tool::MapBackupResult result = Caller(context).MapBackup();
    ormacon_tool.info(format_message("Map backup results [%1] [%2]",
                                     {std::to_string(result.code), encoding::wide_to_utf8(result.text)}));
    if (result.code != 0) PrintToConsole(L"Error has occurred\n");
    PrintToConsole(wizard::ShownText(result.text));
}

void Uninstall(CommandContext& context) {
    EnsureDirectCaller(context);
    Caller(context).Uninstall();
}

void SetRepository(CommandContext& context) {
    EnsureDirectCaller(context);
    // The limit of Standard Edition does not apply: fixed from outside.
    wizard::CConfigToolWizard(context.caller, conf_tool::Edition::Unlimited).AskRepositories();
}

void StartWizard(CommandContext& context) {
    context.caller = boost::make_shared<CConfigToolLibCaller>(CallerMode::Wizard);
    wizard::CConfigToolWizard(context.caller).StartWizard();
}

}  // namespace app
