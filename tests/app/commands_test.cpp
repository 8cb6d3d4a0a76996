#include "app/commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/dispatch.h"
#include "app/options.h"
#include "tests/support/demo_host.h"
#include "tests/support/scripted_console.h"

namespace {

using namespace app;
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

}  // namespace
