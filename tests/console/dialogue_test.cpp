// What the commands ask, print, log and change.
#include "common/platform/path.h"
#include "common/platform/versions.h"
#include "common/plugin/working_directory.h"
#include "conf_tool/lib_caller.h"
#include "tests/console/console_kit.h"

namespace {

using namespace console_test;
using testing::EndsWith;
using testing::HasSubstr;

const auto ended = testing::Ne(DWORD{STILL_ACTIVE});
const std::string parsed = "\nParsing incoming values ok.\n", failed = "\nFailed to execute method ";
const std::string loaded =
    "Loading configuration library in direct mode\nLoading configuration library in direct mode ok.\n";
const std::string unloaded = "Unloading configuration library\nUnloading configuration library ok.\n";
const std::string choice =
    "Tovak repositories:\n1. Central Primary\n2. Central Archive\n3. Encrypted Vault\n4. Branch Office\n5. Disaster "
    "Recovery Site\nSpecify up to 4 Tovak repositories to use as target using whitespace as a separator";
const std::string restart = "\nSome errors occurred while applying the configuration. Restart the wizard? (y/n): ";
const std::string unparsed = "\nFailed to parse incoming parameters\n";
const std::string help = R"(  --help                               Show this help page
  --show-config                        Show configuration
  --wizard                             Start configuration wizard
  --set-credentials ACCOUNT [PASSWORD] Set credentials (use username@domain 
                                       format for user account
  --set-host HOST                      Set backup server host name or IP 
                                       address
  --set-port PORT                      Set backup server port
  --set-repositories                   Set Tovak repository as the backup 
                                       target (up to 4 repositories can be 
                                       specified for multiple copies)
  --set-parallelism CHANNELS           Set parallel processing channels count 
                                       (RMAN parallelism)
  --map-backup                         Map imported backup

)";

class Commands : public testing::Test {
protected:
    // Runs the program and answers; compares all that is shown, which ends with a text. Returns the log.
    std::string Play(const std::string& options, const Dialogue& dialogue, const std::string& end) {
        const CConsole console;
        const CProcess process(program_, options, {console.input(), console.screen(), console.screen()});
        process.Answer(console, dialogue);
        std::string log = process.Finish(), shown;
        for (const auto& [question, answer] : dialogue) {
            shown += question + (boost::contains(question, "Enter password") ? "" : answer) + "\n";
        }
        const std::string expected = std::regex_replace(shown + end, std::regex(" +\n"), "\n"), seen = console.Shown();
        EXPECT_EQ(seen, EndOf(expected, std::max<std::size_t>(seen.size(), 1000))) << options;
        return log;
    }

    // Runs the program with redirected output, which is compared to the byte. Returns the log.
    std::string Redirect(const std::string& options, const std::string& printed, DWORD flags = 0,
                         HANDLE input = nullptr) {
        const fs::path output = host_.folder() / "output", error = host_.folder() / "error";
        const auto output_file = Open(output, CREATE_ALWAYS), error_file = Open(error, CREATE_ALWAYS);
        if (input == nullptr) input = nul_.get();
        std::string log = CProcess(program_, options, {input, output_file.get(), error_file.get()}, flags).Finish();
        EXPECT_EQ(FileText(output), boost::replace_all_copy(printed, "\n", "\r\n")) << options << flags;
        EXPECT_EQ(FileText(error), printed.ends_with(unparsed) ? "Ormacon.exe --help lists the options.\r\n" : "")
            << options << flags;
        return log;
    }

    static void ExpectStored(const std::string& account, const std::string& password) {
        conf_tool::ConfigurationSnapshot config;
        conf_tool::CConfigToolLibCaller(conf_tool::CallerMode::Direct).GetConfig(config);
        EXPECT_EQ(encoding::wide_to_utf8(config.domain + L"\\" + config.user_name), account);
        EXPECT_EQ(encoding::wide_to_utf8(config.password), password);
    }

    const test_support::CDemoHost host_;
    const platform::unique_file nul_ = Open("NUL");
    // Beside the tests, or one folder above them in the zip of tests.
    fs::path program_ = test_support::BesideProgram(
        fs::exists(test_support::BesideProgram(L"Ormacon.exe")) ? L"Ormacon.exe" : L"..\\Ormacon.exe");
};

TEST_F(Commands, AskAndPrintAndLog) {
    std::string reason = "-";  // else it would fill its last row on many consoles, and not all go on in the same way
    for (int number = 100'000; number < 102'000; ++number) reason += std::to_string(number) + ":%1-äöж";
    const std::string listing[] = {"Backup server: \n",    "Port: 0\n",           "User name:  oracle \n",
                                   "Domain name: CORP\n",  "Parallelism: 1\n",    "Repository: \n",
                                   "1. Encrypted Vault\n", "2. Central Primary\n"};
    std::string printed = "\nCalling GetConfig function ok.\n";
    for (const std::string& line : listing) printed += "Print to console [" + line + "]\n";
    const auto play = [&](const std::string& options, const std::string& scenario, const Dialogue& dialogue,
                          const std::string& end, const std::string& logged) {
        host_.Scenario(scenario);
        EXPECT_THAT(Play(options, dialogue, end), HasSubstr(logged));
    };
    play("--set-credentials a\\b\\c", "", {{"Enter password for a\\b\\c: ", "s3cret"}},
         "Failed to parse domain and username" + failed + "SetCredentials\n", "[Hidden data]\nERR |Executing method");
    play("--set-credentials \"CORP\\ oracle \"", "", {{"Enter password for CORP\\ oracle : ", " Tr0ub4dor-&3 "}}, "",
         "\nRead from console [Hidden data]\n");
    ExpectStored("CORP\\ oracle ", " Tr0ub4dor-&3 ");
    play("--set-repositories", "<Server edition='1'/>", {{choice + ": ", "3 1"}}, "", "SetRepository ok.\n");
    play("--show-config", "", {}, boost::join(listing, ""), printed + "Executing method ShowConfig ok.\n");
    for (const std::string code : {"0", "-3"}) {
        play("--map-backup", "<MapBackup code='" + code + "' text='2 mapped&#10;'/>", {},
             (code == "0" ? "" : "Error has occurred\n") + std::string("2 mapped\n"),
             "\nMap backup results [" + code + "] [2 mapped\n]\n");
    }
    play("--set-port 1", "<Function name='SetPortDirect' fail='" + reason + "'/>", {},
         reason + failed + "SetBackupServerPort\n", "SetBackupServerPort Failed.");
    play("--wizard", "<Function name='GetConfig' fail='" + reason + "'/>", {{reason + restart, "n"}}, "",
         "\nWARN|" + reason + "\n");
}

TEST_F(Commands, CallOneFunctionAndPrintOnlyItsFailureToARedirectedOutput) {
    const struct {
        std::string options, method, line, function, call = function;
    } cases[] = {
        {"--show-config", "ShowConfig", "Executing ShowConfig command.\n", "GetConfig", "CallGetConfig"},
        {"--set-credentials d\\u secret x", "SetCredentials",
         "Executing SetCredentials command, newDomainAndUsername = [d\\u]\n", "SetCredentials"},
        {"--set-host h", "SetBackupServer", "Executing SetBackupServer command, host = [h]\n", "SetHost"},
        {"--set-port 1", "SetBackupServerPort", "Executing SetNetworkPort command, port = [1]\n", "SetPort"},
        {"--set-parallelism 8", "SetParallelism", "Executing SetParallelism command, parallelism = [8]\n",
         "SetParallelism"},
        {"--map-backup", "MapBackup", "", "MapBackup"},
        {"--uninstall --help", "Uninstall", "", "Uninstall"},
    };
    const CConsole console;
    for (const auto& c : cases) {
        const std::string name = c.function == "GetConfig" ? c.function : c.function + "Direct";
        const std::string begin =
            parsed + "Executing method " + c.method + "\n" + loaded + c.line + "Calling " + c.function + " function\n";
        for (const DWORD flags : {DWORD{0}, DWORD{DETACHED_PROCESS}}) {  // with a console and without
            host_.Scenario("");
            const std::string log = Redirect(c.options, "", flags);
            EXPECT_THAT(
                log, testing::AllOf(HasSubstr(begin), EndsWith("Executing method " + c.method + " ok.\n" + unloaded)));
            EXPECT_EQ(host_.Calls(name), 1) << name;
            host_.Scenario("<Function name='" + name + "' fail='Refused: %1 äж'/>");
            EXPECT_THAT(Redirect(c.options, "Refused: %1 äж" + failed + c.method + "\n", flags),
                        EndsWith(begin + "ERR |Failed to call " + c.call + " function\nERR |Executing method " +
                                 c.method + " Failed.\n" + unloaded));
            host_.ExpectMemoryBalanced(name);
        }
    }
    EXPECT_EQ(console.Shown(), "");
}

TEST_F(Commands, PrintWhatIsWrongOrTheHelpPageToARedirectedOutput) {
    const std::pair<std::string, std::string> cases[] = {
        {"", help},
        {"--hel", help},
        {"--set-port abc", "the argument ('abc') for option '--set-port' is invalid" + unparsed},
        {"--set-cred user -s3cret -verbose", "unrecognised option '***'" + unparsed},
        {"--set-credentials user", "There is no console to read an answer from" + failed + "SetCredentials\n"},
        {"--set-host \"\u009b \u061c\u200e\u2028\u202e\u2066\u2069\"",
         "The backup server [\ufffd \ufffd\ufffd\ufffd\ufffd\ufffd\ufffd] is not allowed: it is neither a host name "
         "nor an IP address." +
             failed + "SetBackupServer\n"},
        {"--set-port 70000", "The port 70000 is not allowed: ports are 1 to 65535." + failed + "SetBackupServerPort\n"},
        {"--set-parallelism 0", "The parallelism 0 is not allowed: it is 1 to 64." + failed + "SetParallelism\n"},
        {"--set-repositories", "Cannot find previously configured values" + failed + "SetRepository\n"},
        {"--wizard", ""},
    };
    const CConsole console;
    for (const auto& [options, printed] : cases) {
        for (const DWORD flags : {DWORD{0}, DWORD{DETACHED_PROCESS}}) Redirect(options, printed, flags);
    }
    EXPECT_EQ(console.Shown(), "");
}

TEST_F(Commands, ReadFromAConsoleWithRedirectedOutputAndPrintToOneWithRedirectedInput) {
    const CConsole console;
    console.Type("s3cret\r");
    Redirect("--set-credentials user", "\n", 0, console.input());
    EXPECT_EQ(console.Shown(), "");
    ExpectStored("\\user", "s3cret");
    CProcess(program_, "--set-credentials user", {nul_.get(), console.screen(), nul_.get()}).Finish();
    EXPECT_EQ(console.Shown(),
              "Enter password for user: There is no console to read an answer from" + failed + "SetCredentials\n");
}

TEST_F(Commands, KeepTextsOutsideEveryCodePage) {
    const std::string account = "КОРП\\oráčле𝒳日";
    Redirect("--set-host bäckup-журнал-日本.example.org", "");
    EXPECT_THAT(Redirect("--set-credentials " + account + " \"pä𝒳ß\\\"日 €;%1\\\\\"", ""),
                HasSubstr("Executing SetCredentials command, newDomainAndUsername = [" + account + "]\n"));
    ExpectStored(account, "pä𝒳ß\"日 €;%1\\");
    const CConsole console;
    const CProcess process(program_, "--wizard", {console.input(), console.screen(), console.screen()});
    // Not every console shows all of these characters in the same way.
    process.Answer(console, {{"]: ", "日本-ж.example.org"},
                             {"0: ", "1"},
                             {"]: ", "日\\𝒳ж"},
                             {": ", "ж日𝒳\"€"},
                             {"separator: ", "1"},
                             {"[1]: ", ""},
                             {"Enter: ", "1"}});
    EXPECT_THAT(process.Finish(), HasSubstr("\nRead from console [日本-ж.example.org]\n"));
    EXPECT_THAT(console.Shown(), HasSubstr("[bäckup-журнал-"));
    ExpectStored("日\\𝒳ж", "ж日𝒳\"€");
}

TEST_F(Commands, WizardOffersWhatIsConfigured) {
    // Each call leaves the console without echo and whole lines; no question may show that.
    std::string faults;
    for (const std::string name :
         {"GetConfig", "SetHost", "SetPort", "SetCredentials", "GetTBRRepositories", "SetParallelism", "GetSummary"}) {
        faults += "<Function name='" + name + "' consoleMode='0'/>";
    }
    host_.Scenario(faults);
    const std::string streams =
        "Enter the number of data streams (1-64) to run in parallel for each repository (RMAN DEVICE PARALLELISM "
        "value). Channel count per device ";
    const std::string menu =
        "\nSummary of the demonstration library (no backup server is contacted):\n  Backup server: "
        "backup.example.org\n  Port: 10006\n  User name: CORP\\oracle\n  Password: (hidden)\n  Parallelism: 8\n"
        "  Repository for backup copy 1: Encrypted Vault (encrypted)\n  Repository for backup copy 2: Central "
        "Primary\nSave configuration?\n1. Apply configuration to the Oracle environment\n2. Export configuration "
        "into a file for manual setup\n3. Cancel without saving\nEnter: ";
    const Dialogue sessions[] = {
        {{"Enter backup server name or IP address : ", "backup.example.org"},
         {"Enter backup server port 0: ", "10006"},
         {"Enter username: ", "CORP\\oracle"},
         {"Enter password for CORP\\oracle: ", "s3cret-word"},
         {choice + ": ", "3  1"},
         {streams + "[1]: ", "8"},
         {menu, "1"}},
        {{"Enter backup server name or IP address  [backup.example.org]: ", ""},
         {"Enter backup server port 10006: ", ""},
         {"Enter username [CORP\\oracle]: ", ""},
         {"Enter password for CORP\\oracle [(do not change the existing password)]: ", ""},
         {choice + " [3 1]: ", ""},
         {streams + "[8]: ", ""},
         {menu, "1"}},
    };
    for (const Dialogue& session : sessions) {
        EXPECT_THAT(Play("--wizard", session,
                         "The demonstration library has applied the configuration and keeps it in " +
                             (host_.folder() / "state.xml").string() + ".\n"),
                    HasSubstr("wizard mode ok.\nExecuting StartWizard command\nNew iteration of wizard\n"));
        EXPECT_EQ(host_.Calls("Commit"), 1);
        ExpectStored("CORP\\oracle", "s3cret-word");
    }
}

TEST_F(Commands, GiveTheConsoleBackWhenInterruptedAtThePasswordPrompt) {
    const char* const runs = std::getenv("ORMACON_INTERRUPTS");  // for scripts/soak.sh
    const CConsole console;
    const auto modes = console.Modes();
    for (int run = 0; run < (runs ? std::stoi(runs) : 30); ++run) {  // each time a little later
        const CProcess process(program_, "--set-credentials user", {console.input(), console.screen(), nul_.get()});
        ASSERT_TRUE(process.WaitUntil([&] { return (console.Modes()[0] & ENABLE_ECHO_INPUT) == 0; }));
        if (run % 4 < 2) console.Type("x");
        Sleep(static_cast<DWORD>(run % 50));
        process.Interrupt(run % 2 == 0 ? CTRL_BREAK_EVENT : CTRL_C_EVENT);
        EXPECT_THAT(process.Finish(ended), testing::EndsWith("Print to console [Enter password for user: ]\n"));
        EXPECT_EQ(console.Modes(), modes) << run;
    }
    EXPECT_EQ(host_.Calls("SetCredentialsDirect"), 0);
}

TEST_F(Commands, GiveTheConsoleBackThatTheLibraryHasChanged) {
    const std::pair<std::string, testing::Matcher<DWORD>> cases[] = {
        {"fail='refused'", DWORD{0}},
        {"crash='access-violation'", static_cast<DWORD>(STATUS_ACCESS_VIOLATION)},
        {"delay='60000'", ended},
    };
    for (const auto& [fault, status] : cases) {
        host_.Scenario("<Function name='SetHostDirect' consoleMode='1' " + fault + "/>");
        const CConsole console;
        const auto modes = console.Modes();
        const CProcess process(program_, "--set-host h", {console.input(), console.screen(), nul_.get()});
        if (fault.starts_with("delay")) {
            EXPECT_TRUE(process.WaitUntil([&] { return console.Modes()[0] == 1; }));
            process.Interrupt(CTRL_C_EVENT);
        }
        process.Finish(status);
        EXPECT_EQ(host_.Calls("SetHostDirect"), 1);
        EXPECT_EQ(console.Modes(), modes) << fault;
    }
}

class MovedCommands : public Commands {
protected:
    MovedCommands() {
        for (const char* name : {"Ormacon.exe", "OrmaconLib.dll"}) {
            fs::copy_file(program_.parent_path() / name, host_.folder() / name);
        }
        program_ = host_.folder() / "Ormacon.exe";
    }
};

TEST_F(MovedCommands, LogTheWholeStartUp) {
    if (plugin::find_working_directory() != platform::parent_of(platform::program_path())) {
        GTEST_SKIP() << "LinkTargetPath is set on this machine";
    }
    const fs::path settings = host_.folder() / "tovak_common_config.xml";
    test_support::WriteFileText(settings,
                                "<Config><PluginParameters><minPluginManagerPort>7000x</minPluginManagerPort>"
                                "<logsDir>C:\\l</logsDir></PluginParameters></Config>");
    const std::string log = Play("", {}, help);
    EXPECT_THAT(log, HasSubstr("\nOS version: " + platform::os_version_text() + "\n" + std::string(77, '=') + "\n" +
                               std::string(84, '=') + "\nSearching no libraries in the current folder: ok\n"));
    EXPECT_THAT(
        log,
        EndsWith("\nGetting current directory by module path [" + program_.string() + "]\nLoading xml file [" +
                 settings.string() +
                 "]\nXml file was successfully loaded\nPlugin manager port is [7000]\nPlugin to manager "
                 "connection attempts count is [30]\nManager lock directory is []\nLogs directory is "
                 "[C:\\l]\nParsing incoming values" +
                 parsed + "Executing method ShowHelp\nExecuting ShowHelp command.\nExecuting method ShowHelp ok.\n"));
}

TEST_F(MovedCommands, SayWhyTheLibraryCannotBeLoaded) {
    const fs::path library = host_.folder() / "OrmaconLib.dll", previous = fs::current_path();
    fs::create_directory(host_.folder() / "current");
    fs::rename(library, host_.folder() / "current" / library.filename());  // where it is not searched
    fs::current_path(host_.folder() / "current");
    for (const std::string code : {"7e", "c1"}) {
        const CConsole console;
        const std::string log =
            CProcess(program_, "--show-config", {nul_.get(), console.screen(), nul_.get()}).Finish();
        EXPECT_THAT(console.Shown(), EndsWith("\nFailed to load configuration library\n--tr:Error code: 0x000000" +
                                              code + failed + "ShowConfig\n"));
        EXPECT_THAT(log, EndsWith(" in direct mode\nERR |Loading configuration library in direct mode Failed.\nERR "
                                  "|Executing method ShowConfig Failed.\n"));
        test_support::WriteFileText(library, "this is no library");
    }
    fs::current_path(previous);
}

}  // namespace
