#include <algorithm>
#include <functional>

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/exc/exceptions.h"
#include "tests/support/demo_host.h"
#include "tests/support/recording_sink.h"
#include "tests/support/test_registry.h"
#include "tests/wizard/scripted_console.h"
#include "wizard/config_tool_wizard.h"

namespace {

using namespace conf_tool;
using test_support::CScriptedConsole;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using Answers = std::deque<std::wstring>;

constexpr wchar_t menu[] =
    L"Save configuration?\r\n1. Apply configuration to the Oracle environment\r\n2. Export configuration into a file "
    L"for manual setup\r\n3. Cancel without saving\r\nEnter: ";
constexpr wchar_t restart_question[] =
    L"Some errors occurred while applying the configuration. Restart the wizard? (y/n): ";

// Answers to all questions on a host without a configuration.
Answers FirstTime(Answers then) {
    Answers answers{L"backup.example.org", L"10006", L"CORP\\oracle", L"secret", L"1 3", L"8"};
    answers.insert(answers.end(), then.begin(), then.end());
    return answers;
}

class WizardRun : public testing::Test {
protected:
    // The whole dialogue of one run of the program; every answer must have been asked for.
    std::wstring Play(Answers answers) {
        CScriptedConsole console(std::move(answers));
        const auto caller = boost::make_shared<CConfigToolLibCaller>(CallerMode::Wizard);
        wizard::CConfigToolWizard(caller).StartWizard();
        EXPECT_EQ(console.answers_left(), 0U);
        return console.transcript();
    }

    std::wstring Default(const wchar_t* name) const { return host_.folder().wstring() + L"\\export/" + name; }

    test_support::CDemoHost host_;
};

// With a target link path, below which exports go by default. The system's protection of passwords does not work in
// this registry, so nothing can be applied.
class WizardExport : public WizardRun {
protected:
    WizardExport() { registry_.SetText(L"SOFTWARE\\Tovak\\Tovak RMAN Plugin", L"LinkTargetPath", host_.folder()); }

private:
    test_support::CTestRegistry registry_;
};

std::wstring From(const std::wstring& transcript, const std::wstring& mark) {
    const std::size_t at = transcript.find(mark);
    return at == std::wstring::npos ? L"(not found)" : transcript.substr(at);
}

TEST_F(WizardRun, FirstSessionAsksEverythingAndApplies) {
    const std::wstring transcript = Play(FirstTime({L"1"}));
    EXPECT_THAT(transcript,
                StartsWith(L"Enter backup server name or IP address : <backup.example.org>"
                           L"Enter backup server port 0: <10006>"
                           L"Enter username: <CORP\\oracle>"
                           L"Enter password for CORP\\oracle: <#secret>"
                           L"Tovak repositories: \r\n1. Central Primary\r\n2. Central Archive\r\n3. Encrypted "
                           L"Vault\r\n4. Branch Office\r\n5. Disaster Recovery Site\r\n"
                           L"Specify up to 4 Tovak repositories to use as target using whitespace as a separator: <1 3>"
                           L"Enter the number of data streams (1-64) to run in parallel for each repository (RMAN "
                           L"DEVICE PARALLELISM value). Channel count per device [1]: <8>"
                           L"\r\nSummary of the demonstration library"));
    EXPECT_THAT(transcript, HasSubstr(std::wstring(menu) + L"<1>The demonstration library has applied"));
    EXPECT_EQ(host_.Calls("Commit"), 1);
    host_.ExpectMemoryBalanced();
}

TEST_F(WizardRun, SecondSessionKeepsEverythingOnEnter) {
    Play(FirstTime({L"1"}));
    EXPECT_THAT(Play({L"", L"", L"", L"", L"", L"", L"1"}),
                StartsWith(L"Enter backup server name or IP address  [backup.example.org]: <>"
                           L"Enter backup server port 10006: <>"
                           L"Enter username [CORP\\oracle]: <>"
                           L"Enter password for CORP\\oracle [(do not change the existing password)]: <#>"));
    CConfigToolLibCaller caller(CallerMode::Direct);
    ConfigurationSnapshot config;
    caller.GetConfig(config);
    EXPECT_EQ(config.host, L"backup.example.org");
    EXPECT_EQ(config.port, 10006);
    EXPECT_EQ(config.domain + L"|" + config.user_name + L"|" + config.password, L"CORP|oracle|secret");
    EXPECT_EQ(config.parallelism, 8);
    EXPECT_EQ(config.repositories.size(), 2U);
}

TEST_F(WizardRun, DefaultsShowWhatIsConfiguredAndStillOffered) {
    {
        CConfigToolLibCaller caller(CallerMode::Direct);
        caller.SetCredentials(L"", L"oracle", L"");
        caller.SetRepositories({{L"REP-0004", L"", 0, 0, false}, {L"REP-0002", L"", 0, 0, false}});
    }
    host_.Scenario(
        "<Server edition='1'/><Repositories><Repository id='A' name='A'/><Repository id='REP-0004' name='B'/>"
        "</Repositories>");
    const std::wstring transcript = Play({L"h", L"1", L"", L"", L"", L"", L"3"});
    EXPECT_THAT(transcript, HasSubstr(L"Enter username [\\oracle]: <>Enter password for \\oracle: <#>"));
    EXPECT_THAT(transcript,
                HasSubstr(L"Select Tovak repository from the list by typing the repository number [2]: <>"));
}

TEST_F(WizardExport, ExportWritesBothFilesAndShowsTheMenuAgain) {
    const std::wstring transcript = Play(FirstTime({L"2", L"", L"", L"3"}));
    EXPECT_THAT(
        From(transcript, menu),
        StartsWith(std::wstring(menu) + L"<2>Enter path to Tovak configuration XML file " +
                   Default(L"tovak_config.xml") + L": <>Saved\r\nEnter path to Oracle RMAN configuration TXT file " +
                   Default(L"rman_config.txt") + L": <>Saved\r\n" + menu + L"<3>"));
    EXPECT_TRUE(std::filesystem::exists(host_.folder() / "export" / "tovak_config.xml"));
    EXPECT_TRUE(std::filesystem::exists(host_.folder() / "export" / "rman_config.txt"));
    EXPECT_EQ(host_.Calls("Commit"), 0);
    EXPECT_EQ(host_.Calls("Cancel"), 1);
    EXPECT_EQ(host_.Calls("GetResult"), 1);
}

TEST_F(WizardExport, ExistingFilesAreReplacedOnlyOnAYes) {
    const std::wstring old = (host_.folder() / L"old.xml").wstring();
    const std::wstring other = (host_.folder() / L"no such folder" / L"rman.txt").wstring();
    test_support::WriteFileText(old, "old");
    const std::wstring transcript = Play(FirstTime({L"2", old, L"no", old, L"", old, L"Y", other, L"3"}));
    const std::wstring question = L"Enter path to Tovak configuration XML file " + Default(L"tovak_config.xml") + L": ";
    const std::wstring replace = old + L" already exists. Do you want to replace it? (yes/no): ";
    EXPECT_THAT(From(transcript, question),
                StartsWith(question + L"<" + old + L">" + replace + L"<no>" + question + L"<" + old + L">" + replace +
                           L"<>" + question + L"<" + old + L">" + replace + L"<Y>Saved\r\n"));
    EXPECT_NE(test_support::FileText(old), "old");
    EXPECT_TRUE(std::filesystem::exists(other));
}

TEST_F(WizardRun, ARelativePathCountsFromTheCurrentDirectoryAndAFolderIsNotReplaced) {
    const auto previous = std::filesystem::current_path();
    std::filesystem::current_path(host_.folder());
    test_support::WriteFileText(L"t.xml", "old");
    std::filesystem::create_directory(L"folder");
    const std::wstring transcript = Play(FirstTime({L"2", L"t.xml", L"yes", L"folder", L"y", L"n"}));
    std::filesystem::current_path(previous);
    EXPECT_THAT(transcript, HasSubstr((host_.folder() / L"t.xml").wstring() + L" already exists."));
    EXPECT_THAT(transcript, EndsWith(L"Cannot replace [" + (host_.folder() / L"folder").wstring() +
                                     L"]: it is a folder\r\n" + restart_question + L"<n>"));
}

TEST_F(WizardRun, TheMenuRetriesUntilItUnderstands) {
    const std::wstring again = L"Unable to parse the value, please try again." + std::wstring(menu);
    EXPECT_THAT(Play(FirstTime({L"0", L"4", L"x", L"", L"1 ", L"+1"})),
                HasSubstr(menu + (L"<0>" + again + L"<4>" + again + L"<x>" + again + L"<>" + again + L"<1 >" + again +
                                  L"<+1>The demonstration")));
    EXPECT_EQ(host_.Calls("Commit"), 1);
}

TEST_F(WizardRun, TheRestartQuestionTakesEverythingButNoForYes) {
    for (const std::wstring no : {L"n", L"NO", L"No"}) {
        EXPECT_THAT(Play({L"h", L"x", no}), EndsWith(L"Cannot convert value [x] from string\r\n" +
                                                     std::wstring(restart_question) + L"<" + no + L">"));
    }
    test_support::CRecordedLog log;
    Play({L"h", L"x", L"Y", L"h", L"x", L"YES", L"h", L"x", L"n"});
    EXPECT_FALSE(log.Contains("No value, assuming YES"));
    EXPECT_EQ(host_.Calls("InitializeWizard"), 3);
    EXPECT_EQ(host_.Calls("GetConfig"), 3);
    Play({L"h", L"x", L"maybe", L"h", L"x", L"n"});
    EXPECT_TRUE(log.Contains("No value, assuming YES"));
    log.Clear();
    Play({L"h", L"x", L"", L"h", L"x", L"n"});
    EXPECT_TRUE(log.Contains("No value, assuming YES"));
    EXPECT_TRUE(log.Contains("Received value [n]"));
}

TEST_F(WizardRun, EveryFailingFunctionIsShownAndCanBeRestarted) {
    const std::wstring xml = host_.folder() / L"x.xml";
    const std::wstring txt = host_.folder() / L"y.txt";
    for (const std::string function :
         {"InitializeWizard", "GetScopeEdition", "GetConfig", "SetHost", "SetPort", "SetCredentials",
          "GetTBRRepositories", "SetRepositories", "GetParallelismRangeString", "SetParallelism", "GetSummary",
          "Commit", "GetResult", "ExportTovakConfig", "ExportRMANConfig", "Cancel"}) {
        Answers answers = FirstTime(function == "Cancel"             ? Answers{L"3"}
                                    : function.starts_with("Export") ? Answers{L"2", xml, txt}
                                                                     : Answers{L"1"});
        for (const auto& [fault, message] :
             {std::pair("fail='Refused.'", L"Refused."),
              std::pair("failWithoutText='1'", L"Configuration library returned an unknown error")}) {
            host_.Scenario("<Function name='" + function + "' " + fault + "/>");
            std::filesystem::remove(xml);
            test_support::CRecordedLog log;
            CScriptedConsole console(answers);
            // What is asked after the failure gets the next answer; it is no "no", so the wizard starts again and in
            // the end runs out of answers.
            const auto caller = boost::make_shared<CConfigToolLibCaller>(CallerMode::Wizard);
            EXPECT_THROW(wizard::CConfigToolWizard(caller).StartWizard(), exc::term_exc_t) << function;
            EXPECT_THAT(console.transcript(), HasSubstr(message + (L"\r\n" + std::wstring(restart_question))))
                << function;
            EXPECT_TRUE(log.Contains("WARN|Failed to execute wizard ")) << function;
            EXPECT_TRUE(log.Contains("Prompting user to re-run wizard")) << function;
            host_.ExpectMemoryBalanced(function);
        }
    }
}

TEST_F(WizardRun, AFailureWithoutATextIsAnUnknownError) {
    struct no_text_t : std::exception {
        const char* what() const noexcept override { return nullptr; }
    };
    const std::function<void()> failures[] = {[] { throw 42; }, [] { throw no_text_t(); },
                                              [] { throw exc::runtime_exc_t(); }};
    for (const auto& fail : failures) {
        CScriptedConsole console({L"n"});
        console.at_first_answer = fail;
        wizard::CConfigToolWizard(boost::make_shared<CConfigToolLibCaller>(CallerMode::Wizard)).StartWizard();
        EXPECT_THAT(console.transcript(), EndsWith(L"Unknown error\r\n" + std::wstring(restart_question) + L"<n>"));
    }
}

TEST_F(WizardRun, ARestartedSessionStartsFreshAndCallsInOrder) {
    test_support::CRecordedLog log;
    Answers answers = FirstTime({L"1"});
    answers.insert(answers.begin(), {L"bad host", L"y"});
    Play(answers);
    const char* expected[] = {"New iteration of wizard",          "Calling InitializeWizard function",
                              "Calling GetScopeEdition function", "Calling GetConfig function",
                              "Calling SetHost function",         "WARN|Failed to execute wizard ",
                              "Prompting user to re-run wizard",  "Received value [y]",
                              "New iteration of wizard",          "Calling InitializeWizard function",
                              "Calling GetScopeEdition function", "Calling GetConfig function",
                              "Calling SetHost function",         "Calling SetPort function",
                              "Calling SetCredentials function",  "Calling GetTBRRepositories function",
                              "Calling SetRepositories function", "Calling GetParallelismRangeString function",
                              "Calling SetParallelism function",  "Calling GetSummary function",
                              "Calling Commit function",          "Calling GetResult function"};
    std::vector<std::string> steps;
    for (const std::string& line : log.lines()) {
        if (std::ranges::find(expected, line) != std::end(expected)) steps.push_back(line);
    }
    EXPECT_THAT(steps, testing::ElementsAreArray(expected));
    EXPECT_EQ(host_.Calls("Commit"), 1);
}

TEST_F(WizardRun, ParallelismIsConvertedAndThenTheLibrarysMatter) {
    for (const auto& [answer, message] : {std::pair(L"-1", L"The parallelism -1 is not allowed: it is 1 to 64."),
                                          std::pair(L"2147483648", L"Cannot convert value [2147483648] from string"),
                                          std::pair(L"80x", L"Cannot convert value [80x] from string")}) {
        Answers answers = FirstTime({L"n"});
        answers[5] = answer;
        EXPECT_THAT(Play(answers), HasSubstr(std::wstring(L"<") + answer + L">" + message + L"\r\n"));
    }
}

TEST_F(WizardRun, NothingIsRepeatedWhereNobodyCanAnswer) {
    for (const Answers& answers : {Answers{L""}, FirstTime({L"", L""})}) {
        CScriptedConsole console(answers);
        console.interactive = false;
        console.Repeat(L"");
        wizard::CConfigToolWizard(boost::make_shared<CConfigToolLibCaller>(CallerMode::Wizard)).StartWizard();
        EXPECT_THAT(console.transcript(), EndsWith(std::wstring(restart_question) + L"<>"));
    }
}

TEST_F(WizardRun, ACancelledReadEndsTheWizardWithoutAnyAnswer) {
    for (std::size_t given = 0; given <= 6; ++given) {
        Answers answers = FirstTime({});
        answers.resize(given);
        CScriptedConsole console(answers);
        const auto caller = boost::make_shared<CConfigToolLibCaller>(CallerMode::Wizard);
        EXPECT_THROW(wizard::CConfigToolWizard(caller).StartWizard(), exc::term_exc_t);
        EXPECT_EQ(console.transcript().find(restart_question), std::wstring::npos);
        EXPECT_EQ(host_.Calls("Commit") + host_.Calls("Cancel"), 0);
    }
}

}  // namespace
