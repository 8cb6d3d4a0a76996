#include "app/commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/dispatch.h"
#include "app/options.h"
#include "tests/support/demo_host.h"
#include "tests/support/recording_sink.h"
#include "tests/support/scripted_console.h"

namespace {

using namespace app;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;

class Commands : public testing::Test {
protected:
    // Runs one command; returns the failure's text, or "ok".
    static std::string Run(std::vector<const char*> words) {
        words.insert(words.begin(), "Ormacon.exe");
        CommandContext context;
        BuildOptions(context);
        Command command = ParseCommandLine(context, static_cast<int>(words.size()), words.data());
        return test_support::FailureOf([&] { ExecuteMethod(command.handler, command.method_name); });
    }

    // The domain, the user name and the password.
    static std::wstring Configuration() {
        conf_tool::ConfigurationSnapshot config;
        conf_tool::CConfigToolLibCaller(conf_tool::CallerMode::Direct).GetConfig(config);
        return config.domain + L"|" + config.user_name + L"|" + config.password;
    }

    test_support::CDemoHost host_;
};

TEST_F(Commands, ValuesReachTheLibraryAsTyped) {
    const struct {
        std::vector<const char*> words;
        const char* logged;
        const char* outcome = "ok";
    } cases[] = {
        {{"--help"}, "Executing ShowHelp command."},
        {{"--show-config"}, "Executing ShowConfig command."},
        {{"--wizard"}, "Executing StartWizard command"},
        {{"--set-host", " h "},
         "Executing SetBackupServer command, host = [ h ]",
         "The backup server [ h ] is not allowed: it is neither a host name nor an IP address.\n"
         "Failed to execute method SetBackupServer"},
        {{"--set-port", "70000"},
         "Executing SetNetworkPort command, port = [70000]",
         "The port 70000 is not allowed: ports are 1 to 65535.\nFailed to execute method SetBackupServerPort"},
        {{"--set-parallelism", "0"},
         "Executing SetParallelism command, parallelism = [0]",
         "The parallelism 0 is not allowed: it is 1 to 64.\nFailed to execute method SetParallelism"},
        {{"--set-credentials", " CORP \\ u "},
         "Executing SetCredentials command, newDomainAndUsername = [ CORP \\ u ]"},
        {{"--set-credentials", "a\\b\\c"},
         "Read from console [Hidden data]",
         "Failed to parse domain and username\nFailed to execute method SetCredentials"},
    };
    test_support::CScriptedConsole console({L" ", L"n", L" pw ", L"another"});
    for (const auto& c : cases) {
        test_support::CRecordedLog log;
        EXPECT_EQ(Run(c.words), c.outcome);
        EXPECT_THAT(log.lines(), Contains(c.logged));
    }
    EXPECT_THAT(console.transcript, HasSubstr(L"The backup server [ ] is not allowed"));
    EXPECT_EQ(Configuration(), L" CORP | u | pw ");
}

TEST_F(Commands, NamesAndTextsAreShownHarmlessAndPassedOnAsTheyAre) {
    host_.Scenario(
        "<Repositories><Repository id='A&#x202E;' name='Good&#13;&#10;1. Evil&#x85;'/></Repositories>"
        "<MapBackup code='1' text='a&#9;b&#10;c&#13;d&#27;[2J'/>");
    test_support::CScriptedConsole console({L"", L"1"});
    EXPECT_EQ(Run({"--set-credentials", "CORP\u200f\\u\u2066"}), "ok");
    EXPECT_EQ(console.transcript, L"Enter password for CORP\ufffd\\u\ufffd: <#>");
    EXPECT_EQ(Run({"--set-repositories"}), "ok");
    console.transcript.clear();
    EXPECT_EQ(Run({"--show-config"}), "ok");
    EXPECT_THAT(console.transcript, HasSubstr(L"User name: u\ufffd\nDomain name: CORP\ufffd\n"));
    EXPECT_THAT(console.transcript, EndsWith(L"1. Good\ufffd\ufffd1. Evil\ufffd\n"));
    EXPECT_EQ(Run({"--map-backup"}), "ok");
    EXPECT_THAT(console.transcript, EndsWith(L"Error has occurred\na\tb\nc\ufffdd\ufffd[2J"));
    EXPECT_EQ(Configuration(), L"CORP\u200f|u\u2066|");
}

TEST_F(Commands, APasswordInTheLibrarysTextIsConcealed) {
    host_.Scenario("<Function name='SetCredentialsDirect' fail='pw-%1: CORP has no pw-%1'/>");
    test_support::CScriptedConsole console({L"pw-%1", L""});
    for (const auto& [words, shown] : {std::pair(std::vector{"--set-credentials", "CORP\\u"}, "***: CORP has no ***"),
                                       {{"--set-credentials", "CORP\\u", "CORP"}, "pw-%1: *** has no pw-%1"},
                                       {{"--set-credentials", "CORP\\u"}, "pw-%1: CORP has no pw-%1"}}) {
        EXPECT_EQ(Run(words), shown + std::string("\nFailed to execute method SetCredentials"));
    }
}

TEST_F(Commands, APasswordThatNobodyCanTypeIsNotSet) {
    test_support::CScriptedConsole console({L""}, false);
    EXPECT_EQ(Run({"--set-credentials", "CORP\\oracle"}),
              "There is no console to read an answer from\nFailed to execute method SetCredentials");
    EXPECT_EQ(host_.Calls("SetCredentialsDirect"), 0);
}

}  // namespace
