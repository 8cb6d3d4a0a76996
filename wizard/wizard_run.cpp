// The run loop: iterations, saving, and what happens after a failure.
#include "conf_tool/log_component.h"
#include "wizard/config_tool_wizard.h"

#include <exception>

#include <boost/make_shared.hpp>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/log_exception.h"
#include "common/platform/wipe.h"
#include "common/plugin/working_directory.h"
#include "wizard/answers.h"
#include "wizard/console.h"
#include "wizard/console_device.h"
#include "wizard/output_path.h"
#include "wizard/repository_selection.h"
#include "wizard/shown_text.h"

namespace wizard {
namespace {

using conf_tool::ormacon_tool;
using exc::format_message;

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
    scope_edition_ = caller_->GetScopeEdition();
    LoadPreviousConfig();
    AskHost();
    AskPort();
    AskCredentials();
    AskRepositories();
    if (scope_edition_ != standard_edition) AskParallelism();
    ShowSummary();
    AskAndSave();
    ShowResult();
}

void CConfigToolWizard::LoadPreviousConfig() {
    const auto config = boost::make_shared<conf_tool::ConfigurationSnapshot>();
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
