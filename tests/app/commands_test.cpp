#include "app/commands.h"

#include <gmock/gmock.h>

#include "app/dispatch.h"
#include "app/options.h"
#include "tests/support/demo_host.h"
#include "tests/support/recording_sink.h"
#include "tests/support/scripted_console.h"

namespace {

using namespace app;
using testing::EndsWith;

// Returns the name of the method that the words choose, or the failure.
std::string MethodFor(std::vector<const char*> words, bool execute = false) {
    words.insert(words.begin(), "Ormacon.exe");
    CommandContext context;
    BuildOptions(context);
    Command command;
    const std::string failure = test_support::FailureOf([&] {
        command = ParseCommandLine(context, static_cast<int>(words.size()), words.data());
        if (execute) ExecuteMethod(command.handler, command.method_name);
    });
    return failure == "ok" ? command.method_name : failure;
}

TEST(Commands, ChoosesTheLastCheckThatApplies) {
    const std::pair<std::vector<const char*>, const char*> cases[] = {
        {{}, "ShowHelp"},
        {{"--help", "--show-config"}, "ShowConfig"},
        {{"--set-cred", "a", "b", "c", "--show-config"}, "SetCredentials"},
        {{"--set-host=h", "--set-credentials", "a"}, "SetBackupServer"},
        {{"--set-host", "x", "--set-port", "1"}, "SetBackupServerPort"},
        {{"--set-repositories", "--set-port", "1"}, "SetRepository"},
        {{"--wizard", "--set-repositories"}, "StartWizard"},
        {{"--set-parallelism", "4", "--wizard"}, "SetParallelism"},
        {{"--map-backup", "--set-parallelism", "4"}, "MapBackup"},
        {{"--uninstall", "--map-backup", "--help"}, "Uninstall"},
    };
    for (const auto& [words, method] : cases) EXPECT_EQ(MethodFor(words), method);
}

TEST(Commands, ComplaintsOfTheParserGetTheirContext) {
    const std::pair<std::vector<const char*>, std::string> cases[] = {
        {{"--set-port", "a=b"}, "the argument ('a=b') for option '--set-port' is invalid"},
        {{"--set-credentials", "user", "--s3cret=x", "--set-port", "1"}, "unrecognised option '--s3cret=***'"},
        {{"--set-credentials", "CORP\\oracle", "pw", "--set-prot", "10006"}, "unrecognised option '--set-prot'"},
        {{"--set-credentials", "user", "-s3cret=pw"}, "unrecognised option '***'"},
        {{"--set-credentials", "user", "--1s3cret="},
         "the argument for option '***' should follow immediately after the equal sign"},
        {{"--set-credentials", "user", "--wizard", "-v"}, "unrecognised option '-v'"},
        {{"set-credentials", "user", "-s3cret"}, "unrecognised option '***'"},
        {{"/set-cred", "user", "-s3cret"}, "unrecognised option '***'"},
        {{"/", "s=", "-misspelt"}, "unrecognised option '-misspelt'"},
        {{"--password=s3cret=", "--set-credentials=user"}, "unrecognised option '--password=***'"},
        {{"--set=s3cret"},
         "option '--set=***' is ambiguous and matches '--set-credentials', '--set-host', '--set-parallelism', "
         "'--set-port', and '--set-repositories'"},
        {{"help"}, "too many positional options have been specified on the command line"},
    };
    for (const auto& [words, complaint] : cases) {
        const test_support::CRecordedLog log;
        EXPECT_EQ(MethodFor(words), complaint + "\nFailed to parse incoming parameters");
        EXPECT_EQ(log.Text(), "Parsing incoming values\nERR |Parsing incoming values Failed.\n");
    }
}

TEST(Commands, NamesAndTextsAreShownHarmlessAndPassedOnAsTheyAre) {
    const test_support::CDemoHost host;
    host.Scenario(
        "<Repositories><Repository id='A&#x202E;' name='Good&#13;&#10;1.&#xA0;Evil&#x85;'/></Repositories>"
        "<MapBackup code='1' text='a&#9;b&#10;c&#13;d&#27;[2J'/>");
    test_support::CScriptedConsole console({L"", L"1"});
    MethodFor({"--set-credentials", "CORP\u200f\\u\u2066"}, true);
    EXPECT_EQ(console.transcript, L"Enter password for CORP\ufffd\\u\ufffd: <#>");
    MethodFor({"--set-repositories"}, true);
    console.transcript.clear();
    MethodFor({"--show-config"}, true);
    EXPECT_THAT(console.transcript, testing::HasSubstr(L"User name: u\ufffd\nDomain name: CORP\ufffd\n"));
    EXPECT_THAT(console.transcript, EndsWith(L"1. Good\ufffd\ufffd1.\u00a0Evil\ufffd\n"));
    MethodFor({"--map-backup"}, true);
    EXPECT_THAT(console.transcript, EndsWith(L"Error has occurred\na\tb\nc\ufffdd\ufffd[2J"));
    conf_tool::ConfigurationSnapshot config;
    conf_tool::CConfigToolLibCaller(conf_tool::CallerMode::Direct).GetConfig(config);
    EXPECT_EQ(config.domain + L"|" + config.user_name + L"|" + config.password, L"CORP\u200f|u\u2066|");
}

}  // namespace
