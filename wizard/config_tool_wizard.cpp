#include "wizard/config_tool_wizard.h"

#include <exception>

#include <boost/make_shared.hpp>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/log_exception.h"
#include "common/platform/wipe.h"
#include "common/plugin/working_directory.h"
#include "conf_tool/log_component.h"
#include "wizard/answers.h"
#include "wizard/console.h"
#include "wizard/output_path.h"
#include "wizard/repository_selection.h"
#include "wizard/shown_text.h"

namespace wizard {
namespace {

using conf_tool::CConfigToolLibCaller;
using conf_tool::ConfigurationSnapshot;
using conf_tool::Edition;
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
void TakeConfigured(std::wstring& password, CConfigToolLibCaller& caller) {
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

std::wstring AskSelection(const std::wstring& current, Edition edition) {
    const char* question =
        edition == Edition::Standard
            ? "Select Tovak repository from the list by typing the repository number%1: "
            : "Specify up to 4 Tovak repositories to use as target using whitespace as a separator%1: ";
    std::wstring answer = Ask(FormatPrompt(question, {BracketedDefault(current)}), current);
    if (answer.empty()) exc::raise("Cannot find previously configured values");
    return answer;
}

}  // namespace

CConfigToolWizard::CConfigToolWizard(boost::shared_ptr<CConfigToolLibCaller> caller, Edition edition)
    : caller_(std::move(caller)), edition_(edition), previous_(boost::make_shared<ConfigurationSnapshot>()) {}

// The questions. Each one asks, converts the answer, and passes it to the library.

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
    const std::wstring answer = AskSelection(current, edition_);
    caller_->SetRepositories(SelectRepositories(answer, offered, edition_));
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

// The run: rounds of questions, saving, and what happens after a failure.

namespace {

enum SaveChoice { apply = 1, export_files = 2, cancel = 3 };

constexpr wchar_t save_menu[] =
    L"Save configuration?\r\n"
    L"1. Apply configuration to the Oracle environment\r\n"
    L"2. Export configuration into a file for manual setup\r\n"
    L"3. Cancel without saving\r\n"
    L"Enter: ";

bool ReadSaveChoice(const std::wstring& answer, int& choice) {
    try {
        choice = ParseInt(answer);
        return choice >= apply && choice <= cancel;
    } catch (const std::bad_cast&) {
        return false;
    }
}

std::string MessageOf(const std::exception& failure) {
    const char* message = failure.what();
    return message == nullptr || *message == '\0' ? "Unknown error" : message;
}

// Any answer except a clear no means yes, if somebody can answer.
bool WantsRestart() {
    PrintToConsole(L"Some errors occurred while applying the configuration. Restart the wizard? (y/n): ");
    const std::wstring answer = ReadFromConsole();
    ormacon_tool.info(format_message("Received value [%1]", encoding::wide_to_utf8(answer)));
    const std::wstring lower = ToLowerText(answer);
    if (!ConsoleDevice().IsInteractive()) return false;
    if (lower == L"n" || lower == L"no") return false;
    if (lower != L"y" && lower != L"yes") ormacon_tool.info("No value, assuming YES");
    return true;
}

bool AskAfterFailure(const std::exception& failure) {
    logging::log_exception(ormacon_tool, "Failed to execute wizard ", failure);  // the space is fixed from outside
    ormacon_tool.info("Prompting user to re-run wizard");
    PrintToConsole(ShownText(encoding::utf8_to_wide(MessageOf(failure))) + L"\r\n");
    return WantsRestart();
}

boost::filesystem::path AskExportPath(const char* question, const char* default_name) {
    const boost::filesystem::path default_path =
        boost::filesystem::path(plugin::find_working_directory()) / default_name;
    return AskOutputPath(FormatPrompt(question, {default_path.wstring()}), default_path);
}

}  // namespace

void CConfigToolWizard::StartWizard() {
    ormacon_tool.info("Executing StartWizard command");
    for (bool restart = true; restart;) {
        ormacon_tool.info("New iteration of wizard");
        try {
            RunIteration();
            return;
        } catch (const std::exception& failure) {
            restart = AskAfterFailure(failure);
        } catch (...) {
            restart = AskAfterFailure(exc::runtime_exc_t());
        }
    }
}

void CConfigToolWizard::RunIteration() {
    caller_->InitializeWizard();
    edition_ = caller_->GetScopeEdition();
    LoadPreviousConfig();
    AskHost();
    AskPort();
    AskCredentials();
    AskRepositories();
    if (edition_ != Edition::Standard) AskParallelism();
    ShowSummary();
    AskAndSave();
    ShowResult();
}

void CConfigToolWizard::LoadPreviousConfig() {
    const auto config = boost::make_shared<ConfigurationSnapshot>();
    caller_->GetConfig(*config);
    has_password_ = !config->password.empty();
    platform::wipe(config->password);
    previous_ = config;
}

void CConfigToolWizard::AskAndSave() {
    bool again = false;
    do {
        ApplyChoice(AskSaveChoice(), again);
    } while (again);
}

int CConfigToolWizard::AskSaveChoice() {
    for (;;) {
        PrintToConsole(save_menu);
        int choice = 0;
        if (ReadSaveChoice(ReadFromConsole(), choice)) return choice;
        PrintToConsole(L"Unable to parse the value, please try again.");
    }
}

void CConfigToolWizard::ApplyChoice(int choice, bool& again) {
    again = choice == export_files;
    switch (choice) {
        case apply:
            return caller_->Commit();
        case export_files:
            ExportTovakConfigFile();
            return ExportRmanConfigFile();
        case cancel:
            cancelled_ = true;
            return caller_->Cancel();
        default:  // cannot happen; fixed from outside
            exc::raise(format_message("Unable to parse value: %1", std::to_string(choice)));
    }
}

void CConfigToolWizard::ExportTovakConfigFile() {
    const auto path = AskExportPath("Enter path to Tovak configuration XML file %1: ", "export/tovak_config.xml");
    caller_->ExportTovakConfig(path.wstring());
    PrintToConsole(L"Saved\r\n");
}

void CConfigToolWizard::ExportRmanConfigFile() {
    const auto path = AskExportPath("Enter path to Oracle RMAN configuration TXT file %1: ", "export/rman_config.txt");
    caller_->ExportRMANConfig(path.wstring());
    PrintToConsole(L"Saved\r\n");
}

void CConfigToolWizard::ShowResult() { PrintToConsole(ShownText(caller_->GetResult())); }

}  // namespace wizard
