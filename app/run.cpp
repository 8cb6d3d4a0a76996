#include "app/run.h"

#include <iostream>
#include <optional>
#include <utility>

#include "app/dispatch.h"
#include "app/options.h"
#include "app/start_up.h"
#include "common/crash/install.h"
#include "common/encoding/convert.h"
#include "conf_tool/log_component.h"
#include "wizard/console_session.h"
#include "wizard/shown_text.h"

namespace app {
namespace {

void Print(const char* message) {
    const std::wstring text = encoding::utf8_to_wide(message == nullptr ? "Unknown error" : message);
    std::cout << encoding::wide_to_utf8(wizard::ShownText(text)) << std::endl;
}

void RunCommand(int argc, const char* const* argv) {
    CommandContext context;
    BuildOptions(context);
    Command command;
    try {
        command = ParseCommandLine(context, argc, argv);
    } catch (const std::exception& complaint) {
        Print(complaint.what());
        std::cerr << "Ormacon.exe --help lists the options." << std::endl;
        return;
    }
    ExecuteMethod(std::move(command.handler), command.method_name);
    context.ReleaseCaller();
}

}  // namespace

void Run(int argc, const char* const* argv) {
    std::optional<wizard::CConsoleSession> console_session;
    try {
        HardenProcess();
        crash::install(conf_tool::ormacon_tool, log_folder, L"Ormacon_crash");
        console_session.emplace();
        InitializeApplication();
        RunCommand(argc, argv);
    } catch (const std::exception& failure) {
        Print(failure.what());
    }
}

}  // namespace app
