// The questions. Each one asks, converts the answer, and passes it to the library.
#include "conf_tool/log_component.h"
#include "wizard/config_tool_wizard.h"

#include <boost/make_shared.hpp>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/wipe.h"
#include "wizard/answers.h"
#include "wizard/console.h"
#include "wizard/repository_selection.h"
#include "wizard/shown_text.h"

namespace wizard {
namespace {

using conf_tool::ConfigurationSnapshot;
using conf_tool::ormacon_tool;
using conf_tool::RepositoryEntry;
using exc::format_message;

// Ports and parallelism are unsigned for the user and signed for the library.
std::wstring UnsignedText(int value) { return std::to_wstring(static_cast<unsigned>(value)); }

int AskNumber(const std::wstring& prompt, int previous) {
    const std::wstring answer = Ask(prompt, L"");
    return answer.empty() ? previous : ConvertAnswer(answer);
}

// An empty domain still shows its backslash if there is a user name.
std::wstring AccountText(const ConfigurationSnapshot& config) {
    const std::wstring account = config.domain + L"\\" + config.user_name;
    return account == L"\\" ? L"" : account;
}

std::wstring AskPassword(const std::wstring& account, bool has_password) {
    PrintToConsole(FormatPrompt("Enter password for %1%2: ",
                                {account, has_password ? L" [(do not change the existing password)]" : L""}));
    return ReadFromConsole(true);
}

// It is fetched only when it is needed, so that it is not in memory during the other questions.
void TakeConfigured(std::wstring& password, conf_tool::CConfigToolLibCaller& caller) {
    ConfigurationSnapshot config;
    caller.GetConfig(config);
    password = config.password;
}

void LogReceived(const std::vector<RepositoryEntry>& repositories) {
    ormacon_tool.info(
        format_message("CConfigToolWizard received repos: size=[%1]", std::to_string(repositories.size())));
    for (const RepositoryEntry& entry : repositories) {
        ormacon_tool.info(
            format_message("CConfigToolWizard received repos id=[%1] name=[%2] capacity=[%3] free_space=[%4]",
                           {encoding::wide_to_utf8(entry.id), encoding::wide_to_utf8(entry.name),
                            conf_tool::SizeText(entry.capacity), conf_tool::SizeText(entry.free_space)}));
    }
}

void ListRepositories(const std::vector<RepositoryEntry>& repositories) {
    PrintToConsole(L"Tovak repositories: \r\n");
    for (std::size_t i = 0; i < repositories.size(); ++i) {
        PrintToConsole(std::to_wstring(i + 1) + L". " + ShownValue(repositories[i].name) + L"\r\n");
    }
}

std::wstring AskSelection(const std::wstring& current, int scope_edition) {
    const char* question =
        scope_edition == standard_edition
            ? "Select Tovak repository from the list by typing the repository number%1: "
            : "Specify up to 4 Tovak repositories to use as target using whitespace as a separator%1: ";
    std::wstring answer = Ask(FormatPrompt(question, {BracketedDefault(current)}), current);
    if (answer.empty()) exc::raise("Cannot find previously configured values");
    return answer;
}

}  // namespace

CConfigToolWizard::CConfigToolWizard(boost::shared_ptr<conf_tool::CConfigToolLibCaller> caller, int scope_edition)
    : caller_(std::move(caller)),
      scope_edition_(scope_edition),
      previous_(boost::make_shared<ConfigurationSnapshot>()) {}

void CConfigToolWizard::AskHost() {
    const auto previous = previous_;  // a copy in each step: fixed from outside
    const std::wstring prompt =
        FormatPrompt("Enter backup server name or IP address %1: ", {BracketedDefault(previous->host)});
    caller_->SetHost(Ask(prompt, previous->host));
}

void CConfigToolWizard::AskPort() {
    const auto previous = previous_;
    const std::wstring prompt = FormatPrompt("Enter backup server port %1: ", {UnsignedText(previous->port)});
    caller_->SetPort(AskNumber(prompt, previous->port));
}

void CConfigToolWizard::AskCredentials() {
    const auto previous = previous_;
    const std::wstring shown = AccountText(*previous);
    const std::wstring account_text = Ask(FormatPrompt("Enter username%1: ", {BracketedDefault(shown)}), shown);
    const Account account = SplitAccount(account_text);
    std::wstring password = AskPassword(account_text, has_password_);
    const platform::wipe_at_exit_t wipe_password(password);
    if (password.empty() && has_password_) TakeConfigured(password, *caller_);
    caller_->SetCredentials(account.domain, account.user_name, password);
}

void CConfigToolWizard::AskRepositories() {
    const auto previous = previous_;
    std::vector<RepositoryEntry> offered;
    caller_->GetTBRRepositories(offered);
    LogReceived(offered);
    ListRepositories(offered);
    const std::wstring current = SelectionText(previous->repositories, offered);
    const std::wstring answer = AskSelection(current, scope_edition_);
    caller_->SetRepositories(SelectRepositories(answer, offered, scope_edition_));
}

void CConfigToolWizard::AskParallelism() {
    const auto previous = previous_;
    const std::wstring range = caller_->GetParallelismRangeString();
    const std::wstring prompt = FormatPrompt(
        "Enter the number of data streams (%1) to run in parallel for each repository (RMAN DEVICE PARALLELISM value). "
        "Channel count per device [%2]: ",
        {range, UnsignedText(previous->parallelism)});
    caller_->SetParallelism(AskNumber(prompt, previous->parallelism));
}

void CConfigToolWizard::ShowSummary() {
    const std::wstring summary = caller_->GetSummary();
    PrintToConsole(L"\r\n");
    PrintToConsole(ShownText(summary));
}

}  // namespace wizard
