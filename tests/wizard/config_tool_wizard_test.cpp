#include <boost/make_shared.hpp>
#include <gmock/gmock.h>

#include "tests/support/demo_host.h"
#include "tests/support/recording_sink.h"
#include "tests/support/scripted_console.h"
#include "tests/support/test_registry.h"
#include "wizard/config_tool_wizard.h"

namespace {

using namespace conf_tool;
using test_support::Answers;
using test_support::CScriptedConsole;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;

constexpr wchar_t menu[] =
    L"Save configuration?\r\n1. Apply configuration to the Oracle environment\r\n2. Export configuration into a file "
    L"for manual setup\r\n3. Cancel without saving\r\nEnter: ";
constexpr wchar_t restart_question[] =
    L"Some errors occurred while applying the configuration. Restart the wizard? (y/n): ";

// Answers all questions on a host without a configuration.
Answers FirstTime(Answers then) {
    Answers answers{L"backup.example.org", L"10006", L"CORP\\oracle", L"secret", L"1 3", L"8"};
    answers.insert(answers.end(), then.begin(), then.end());
    return answers;
}

class WizardRun : public testing::Test {
protected:
    static void Start() {
        wizard::CConfigToolWizard(boost::make_shared<CConfigToolLibCaller>(CallerMode::Wizard)).StartWizard();
    }

    // Returns the whole dialogue of one run of the program, and checks that every answer was asked for.
    std::wstring Play(Answers answers) {
        CScriptedConsole console(std::move(answers));
        Start();
        EXPECT_EQ(console.answers.size(), 0U);
        return console.transcript;
    }

    test_support::CDemoHost host_;
};

TEST_F(WizardRun, DefaultsShowWhatIsConfiguredAndStillOffered) {
    {
        CConfigToolLibCaller caller(CallerMode::Direct);
        caller.SetCredentials(L"", L"oracle", L"");
        caller.SetRepositories({{L"REP-0004", L"", 0, 0, false}, {L"REP-0002", L"", 0, 0, false}});
    }
    host_.Scenario(
        "<Server edition='1'/><Repositories><Repository id='A' name='N' capacity='10' freeSpace='5'/><Repository "
        "id='REP-0004' name='B'/><Repository id='rep-0002' name='C'/></Repositories>");
    const test_support::CRecordedLog log;
    const std::wstring transcript = Play({L"h", L"1", L"", L"", L"", L"1"});
    EXPECT_THAT(transcript, HasSubstr(L"Enter username [\\oracle]: <>Enter password for \\oracle: <#>"));
    EXPECT_THAT(transcript,
                HasSubstr(L"Select Tovak repository from the list by typing the repository number [2]: <>\r\nSummary"));
    // In Standard Edition nothing about parallelism is asked, neither of the user nor of the library.
    EXPECT_EQ(host_.Calls("GetParallelismRangeString") + host_.Calls("SetParallelism"), 0);
    EXPECT_EQ(host_.Calls("GetConfig"), 1);  // without a password that could be kept
    EXPECT_THAT(log.Text(), HasSubstr("\nCConfigToolWizard received repos: size=[3]\nCConfigToolWizard received repos "
                                      "id=[A] name=[N] capacity=[10] free_space=[5]\n"));
    EXPECT_THAT(log.Text(), HasSubstr("\nValidating value\nValidating value ok.\nCalling SetRepositories function\n"));
}

TEST_F(WizardRun, TheConfiguredPasswordIsFetchedOnlyToBeKept) {
    CConfigToolLibCaller(CallerMode::Direct).SetCredentials(L"", L"u", L"secret");
    host_.Scenario("<Function name='SetCredentials' fail='No: secret' first='1'/>");
    test_support::CRecordedLog log;
    EXPECT_THAT(Play({L"h", L"1", L"", L"", L"y", L"h", L"1", L"", L"s3cr3t", L"1", L"1", L"3"}),
                HasSubstr(L"[(do not change the existing password)]: <#>No: ***\r\n" + std::wstring(restart_question)));
    EXPECT_THAT(log.lines(), Contains("WARN|No: ***"));
    EXPECT_EQ(host_.Calls("GetConfig"), 3);
}

TEST_F(WizardRun, ExportWritesBothFilesAndReplacesOnlyOnAYes) {
    test_support::CTestRegistry registry;  // without what the system needs to protect a password, so none is given
    registry.SetText(L"SOFTWARE\\Tovak\\Tovak RMAN Plugin", L"LinkTargetPath", host_.folder());
    const std::wstring xml = host_.folder().wstring() + L"\\export/tovak_config.xml";
    const std::wstring txt = host_.folder().wstring() + L"\\export/rman_config.txt";
    const std::wstring other = (host_.folder() / L"no such folder" / L"rman.txt").wstring();
    const std::wstring ask_xml = L"Enter path to Tovak configuration XML file " + xml + L": <>";
    const std::wstring ask_txt = L"Enter path to Oracle RMAN configuration TXT file " + txt + L": <";
    const std::wstring replace = xml + L" already exists. Do you want to replace it? (yes/no): ";

    const std::wstring quoted = L'"' + other + L'"';  // as Explorer copies it
    Answers answers = FirstTime({L"2", L"", L"", L"2", L"", L"no", L"", L"", L"", L"Y", quoted, L"3"});
    answers[3] = L"";
    const std::wstring transcript = Play(answers);
    EXPECT_THAT(transcript,
                HasSubstr(menu + (L"<2>" + ask_xml + L"Saved\r\n" + ask_txt + L">Saved\r\n" + menu + L"<2>" + ask_xml +
                                  replace + L"<no>" + ask_xml + replace + L"<>" + ask_xml + replace + L"<Y>Saved\r\n" +
                                  ask_txt + quoted + L">Saved\r\n" + menu + L"<3>The Tovak")));
    EXPECT_THAT(transcript, EndsWith(L"The wizard was cancelled: the configuration of this host is unchanged.\r\n"));
    for (const std::wstring& file : {xml, txt, other}) EXPECT_TRUE(std::filesystem::exists(file)) << file;
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
                                  L"<+1>The demonstration library has applied")));
}

TEST_F(WizardRun, TheRestartQuestionTakesEverythingButNoForYes) {
    for (const wchar_t* no : {L"n", L"NO", L"No"}) Play({L"h", L"x", no});
    for (const std::string answer : {"Y", "yEs", "maybe", ""}) {
        const test_support::CRecordedLog log;
        Play({L"h", L"x", {answer.begin(), answer.end()}, L"h", L"x", L"n"});
        EXPECT_THAT(log.Text(), HasSubstr("WARN|Failed to execute wizard \nWARN|Cannot convert value [x] from string\n"
                                          "Prompting user to re-run wizard\nPrint to console"));
        EXPECT_THAT(log.Text(), HasSubstr("Received value [" + answer + "]\n" +
                                          (answer.empty() || answer[0] == 'm' ? "No value, assuming YES\n" : "") +
                                          "New iteration of wizard\nCalling InitializeWizard function\n"));
    }
}

TEST_F(WizardRun, EveryFailingFunctionIsShownAndCanBeRestarted) {
    const std::wstring xml = host_.folder() / L"x.xml";
    const std::wstring txt = host_.folder() / L"y.txt";
    for (const std::string function :
         {"InitializeWizard", "GetScopeEdition", "GetConfig", "SetHost", "SetPort", "SetCredentials",
          "GetTBRRepositories", "SetRepositories", "GetParallelismRangeString", "SetParallelism", "GetSummary",
          "Commit", "GetResult", "ExportTovakConfig", "ExportRMANConfig", "Cancel"}) {
        host_.Scenario("<Function name='" + function + "' fail='Refused.'/>");
        test_support::CRecordedLog log;
        CScriptedConsole console(FirstTime(function == "Cancel"             ? Answers{L"3"}
                                           : function.starts_with("Export") ? Answers{L"2", xml, txt}
                                                                            : Answers{L"1"}));
        // What is asked after the failure gets the next answer; it is no "no", so the wizard starts again and in
        // the end runs out of answers.
        EXPECT_THROW(Start(), exc::term_exc_t) << function;
        EXPECT_THAT(console.transcript, HasSubstr(L"Refused.\r\n" + std::wstring(restart_question))) << function;
        const std::string name = function == "GetConfig" ? "CallGetConfig" : function;
        EXPECT_THAT(log.lines(), Contains("ERR |Failed to call " + name + " function")) << function;
        host_.ExpectMemoryBalanced(function);
        std::filesystem::remove(xml);
    }
}

TEST_F(WizardRun, AFailureWithoutATextIsAnUnknownError) {
    CScriptedConsole console({L"n"});
    console.at_first_answer = [] { throw 42; };
    Start();
    EXPECT_THAT(console.transcript, EndsWith(L"Unknown error\r\n" + std::wstring(restart_question) + L"<n>"));
}

TEST_F(WizardRun, WhatIsWrongWithAnAnswerIsShown) {
    const struct {
        std::size_t question;
        const wchar_t* answer;
        const wchar_t* message;
        const char* scenario = "";
    } cases[] = {
        {0, L" ", L"The backup server [ ] is not allowed: it is neither a host name nor an IP address."},
        {1, L"2147483648", L"Cannot convert value [2147483648] from string"},
        {2, L"a\\b\\c", L"Failed to parse domain and username"},
        {4, L"", L"Cannot find previously configured values"},
        {4, L"1\t2", L"Cannot convert value [1\t2] from string"},
        {4, L"3 99 +3", L"Same Tovak repository was specified more than once (3)"},
        {4, L"1  +06", L"Incorrect repository value: +06"},
        {4, L"0", L"Incorrect repository value: 0"},
        {4, L"1 1", L"Same Tovak repository was specified more than once (1)", "<Server edition='1'/>"},
        {4, L"1 99", L"Unable to use more than one repository due to a limitation of Oracle Standard Edition (SE)",
         "<Server edition='1'/>"},
        {5, L"-1", L"The parallelism -1 is not allowed: it is 1 to 64."},
        {5, L"\u0667", L"Cannot convert value [\u0667] from string"},
    };
    for (const auto& c : cases) {
        Answers answers = FirstTime({});
        answers.resize(c.question);
        answers.insert(answers.end(), {c.answer, L"n"});
        host_.Scenario(c.scenario);
        EXPECT_THAT(Play(answers),
                    EndsWith(std::wstring(L"<") + c.answer + L">" + c.message + L"\r\n" + restart_question + L"<n>"));
    }
}

TEST_F(WizardRun, NamesAndTextsCannotRewriteTheScreen) {
    host_.Scenario(
        "<Repositories><Repository id='A&#x202E;' name='Good&#13;&#10;1. Evil&#x202E;'/></Repositories>"
        "<Function name='Commit' fail='A&#9;b&#13;&#10;c&#13;d&#27;[2Je'/>");
    const std::wstring transcript = Play({L"h", L"1", L"CORP\\u\u202e", L"", L"1", L"1", L"1", L"n"});
    EXPECT_THAT(transcript, HasSubstr(L"Enter password for CORP\\u\ufffd: <#>Tovak repositories: \r\n"
                                      L"1. Good\ufffd\ufffd1. Evil\ufffd\r\nSpecify"));
    EXPECT_THAT(transcript, HasSubstr(L"User name: CORP\\u\ufffd\r\n"));
    EXPECT_THAT(transcript, HasSubstr(L"A\tb\r\nc\ufffdd\ufffd[2Je\r\n" + std::wstring(restart_question)));
}

}  // namespace
