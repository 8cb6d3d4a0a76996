#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/exc/exceptions.h"
#include "tests/support/demo_host.h"
#include "tests/support/recording_sink.h"
#include "tests/wizard/scripted_console.h"
#include "wizard/config_tool_wizard.h"

namespace {

using namespace conf_tool;
using test_support::CScriptedConsole;

constexpr wchar_t repository_list[] =
    L"Tovak repositories: \r\n1. Central Primary\r\n2. Central Archive\r\n3. Encrypted Vault\r\n4. Branch Office\r\n"
    L"5. Disaster Recovery Site\r\n";

// The step on its own, in direct mode, as the set-repositories command runs it.
class WizardSteps : public testing::Test {
protected:
    // The transcript, with the failure behind it where there was one.
    std::wstring Play(std::deque<std::wstring> answers, void (wizard::CConfigToolWizard::*step)(), int edition = 2) {
        CScriptedConsole console(std::move(answers));
        wizard::CConfigToolWizard wizard(caller_, edition);
        try {
            (wizard.*step)();
        } catch (const exc::runtime_exc_t& failure) {
            const std::string what = failure.what();
            return console.transcript() + L"!" + std::wstring(what.begin(), what.end());
        }
        return console.transcript();
    }

    std::vector<std::wstring> ConfiguredRepositories() {
        ConfigurationSnapshot config;
        caller_->GetConfig(config);
        std::vector<std::wstring> ids;
        for (const RepositoryEntry& entry : config.repositories) ids.push_back(entry.id);
        return ids;
    }

    test_support::CDemoHost host_;
    boost::shared_ptr<CConfigToolLibCaller> caller_ = boost::make_shared<CConfigToolLibCaller>(CallerMode::Direct);
};

using W = wizard::CConfigToolWizard;

TEST_F(WizardSteps, RepositoryCommandAsksAndStores) {
    const std::wstring question =
        repository_list +
        std::wstring(L"Specify up to 4 Tovak repositories to use as target using whitespace as a separator: ");
    EXPECT_EQ(Play({L"3 1"}, &W::AskRepositories), question + L"<3 1>");
    EXPECT_EQ(ConfiguredRepositories(), (std::vector<std::wstring>{L"REP-0003", L"REP-0001"}));
    EXPECT_EQ(Play({L""}, &W::AskRepositories), question + L"<>!Cannot find previously configured values");
    EXPECT_EQ(Play({L"1 2 3 4 5"}, &W::AskRepositories),
              question + L"<1 2 3 4 5>!5 repositories are not allowed: at most 4 can be selected.");
    EXPECT_EQ(ConfiguredRepositories(), (std::vector<std::wstring>{L"REP-0003", L"REP-0001"}));
    EXPECT_EQ(Play({L"1 2"}, &W::AskRepositories, 1),
              repository_list +
                  std::wstring(L"Select Tovak repository from the list by typing the repository number: <1 2>!Unable "
                               L"to use more than one repository due to a limitation of Oracle Standard Edition (SE)"));
    host_.ExpectMemoryBalanced();
}

TEST_F(WizardSteps, NoneOrManyRepositoriesAreOffered) {
    host_.Scenario("<Repositories/>");
    EXPECT_EQ(Play({L"1"}, &W::AskRepositories),
              L"Tovak repositories: \r\nSpecify up to 4 Tovak repositories to use as target using whitespace as a "
              L"separator: <1>!Incorrect repository value: 1");
    host_.Scenario("<Repositories generate='1000'/>");
    const std::wstring transcript = Play({L"1000 1"}, &W::AskRepositories);
    EXPECT_NE(transcript.find(L"\r\n1000. "), std::wstring::npos);
    EXPECT_EQ(ConfiguredRepositories(), (std::vector<std::wstring>{L"GEN-1000", L"GEN-1"}));
}

TEST_F(WizardSteps, ReceivedRepositoriesAreLogged) {
    host_.Scenario("<Repositories><Repository id='R1' name='N' capacity='10' freeSpace='5'/></Repositories>");
    test_support::CRecordedLog log;
    Play({L"1"}, &W::AskRepositories);
    EXPECT_TRUE(log.Contains("CConfigToolWizard received repos: size=[1]"));
    EXPECT_TRUE(log.Contains("CConfigToolWizard received repos id=[R1] name=[N] capacity=[10] free_space=[5]"));
}

TEST_F(WizardSteps, AccountWithSeveralBackslashesEndsBeforeThePassword) {
    EXPECT_EQ(Play({L"a\\b\\c"}, &W::AskCredentials), L"Enter username: <a\\b\\c>!Failed to parse domain and username");
    EXPECT_EQ(Play({L"b", L""}, &W::AskCredentials), L"Enter username: <b>Enter password for b: <#>");
    EXPECT_EQ(host_.Calls("SetCredentialsDirect"), 1);
}

}  // namespace
