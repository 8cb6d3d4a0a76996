#include "app/run.h"

#include <cstdio>
#include <iostream>
#include <optional>
#include <utility>

#include "app/command_context.h"
#include "app/options.h"
#include "app/start_up.h"
#include "common/crash/crash_handler.h"
#include "wizard/echo_guard.h"

namespace app {
namespace {

void RunCommand(int argc, const char* const* argv) {
    CommandContext context;
    BuildOptions(context);
    Command command = ParseCommandLine(context, argc, argv);
    ExecuteMethod(std::move(command.handler), command.method_name);
    context.ReleaseCaller();
}

// Left alone, the C run-time library writes to a console, or to NUL, character by character.
void BufferStandardOutput() { std::setvbuf(stdout, nullptr, _IOFBF, 4096); }

void Print(const char* message) { std::cout << (message == nullptr ? "Unknown error" : message) << std::endl; }

}  // namespace

void Run(int argc, const char* const* argv) {
    BufferStandardOutput();
    std::optional<wizard::CConsoleSession> console_session;
    try {
        crash::install(log_folder);
        console_session.emplace();
        InitializeApplication();
        RunCommand(argc, argv);
    } catch (const std::exception& failure) {
        Print(failure.what());
    }
}

}  // namespace app
