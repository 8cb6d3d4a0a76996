#include "app/run.h"

#include <iostream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <boost/make_shared.hpp>

#include "app/dispatch.h"
#include "app/options.h"
#include "common/crash/install.h"
#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/logger.h"
#include "common/logging/open_log.h"
#include "common/platform/module.h"
#include "common/platform/path.h"
#include "common/plugin/common_settings.h"
#include "common/plugin/working_directory.h"
#include "conf_tool/log_component.h"
#include "wizard/console_session.h"
#include "wizard/shown_text.h"
#include "common/win32.h"

#include <objbase.h>

namespace app {
namespace {

// The folder of the log and the crash dumps, below the base log directory.
constexpr wchar_t log_folder[] = L"RmanPluginLogs";

// Keeps what is logged before the log is open.
class CEarlyRecords : public logging::receiver::sink_t {
public:
    void write(const logging::line_head_t&, const logging::record_t& record) override {
        records_.emplace_back(record.level, record.text);
    }

    void LogAgain() const {
        for (const auto& [level, text] : records_) conf_tool::ormacon_tool.log(level, text);
    }

private:
    std::vector<std::pair<unsigned, std::string>> records_;
};

const boost::shared_ptr<CEarlyRecords>& EarlyRecords() {
    static const auto records = boost::make_shared<CEarlyRecords>();
    return records;
}

void Report(bool succeeded, const char* measure) {
    const DWORD code = GetLastError();
    conf_tool::ormacon_tool.log(succeeded ? logging::level_info : logging::level_warning,
                                exc::format_message("%1: %2", {measure, succeeded ? "ok" : exc::get_error_text(code)}));
}

// The empty text takes the current folder out of the search. Wine ignores it: there the program's own folder, which is
// searched anyway, takes its place. On Windows, programs that this process starts would search that before Windows'
// own.
void LeaveCurrentFolderOut() {
    const bool is_wine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    const std::wstring folder = is_wine ? platform::parent_of(platform::program_path()) : L"";
    Report(SetDllDirectoryW(folder.c_str()), "Searching no libraries in the current folder");
}

void RefuseForeignJunctions() {
    PROCESS_MITIGATION_REDIRECTION_TRUST_POLICY policy{};
    policy.EnforceRedirectionTrust = 1;
    Report(SetProcessMitigationPolicy(ProcessRedirectionTrustPolicy, &policy, sizeof policy),
           "Following no junctions that ordinary accounts have made");
}

// Comes before anything is loaded or opened. What is logged from now on is kept for the log.
void HardenProcess() {
    logging::process_logger().attach(EarlyRecords());
    LeaveCurrentFolderOut();
    RefuseForeignJunctions();
}

// Throws if COM or the log fails; any other failure is logged and replaced by defaults.
void InitializeApplication() {
    if (CoInitializeEx(nullptr, COINIT_MULTITHREADED) < 0) exc::raise("Failed to initialize COM library");
    const std::wstring settings_directory = plugin::find_working_directory();
    logging::process_logger().detach(EarlyRecords());
    logging::initialise(conf_tool::ormacon_tool, log_folder, L"Ormacon.log");
    conf_tool::ormacon_tool.info(std::string(84, '='));
    EarlyRecords()->LogAgain();
    plugin::load_common_settings(settings_directory);
}

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
