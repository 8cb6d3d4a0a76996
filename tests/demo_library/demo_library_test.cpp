// Drives the built library in both modes, the way the tool does.
#include <memory>

#include <process.h>

#include <gmock/gmock.h>

#include "common/encoding/convert.h"
#include "conf_tool/lib_caller.h"
#include "tests/support/demo_host.h"

namespace {

using namespace conf_tool;
using test_support::FileText;
using testing::HasSubstr;
using testing::Not;

// The library, loaded anew for each test with files of its own.
class DemoLibrary : public testing::Test {
protected:
    static std::wstring Answer(const std::function<void()>& call) {
        return encoding::utf8_to_wide(test_support::FailureOf(call));
    }

    static std::wstring Select(CConfigToolLibCaller& caller, const std::vector<std::wstring>& ids) {
        std::vector<RepositoryEntry> entries;
        for (const std::wstring& id : ids) entries.push_back({id, L"any name", 1, 1, false});
        return Answer([&] { caller.SetRepositories(entries); });
    }

    const test_support::CDemoHost host;
    const std::filesystem::path folder = host.folder();
    const std::filesystem::path state = folder / "state.xml";
    // The destructor may throw, as that of a test must not.
    const std::unique_ptr<CConfigToolLibCaller> callers[2] = {
        std::make_unique<CConfigToolLibCaller>(CallerMode::Direct),
        std::make_unique<CConfigToolLibCaller>(CallerMode::Wizard)};
    CConfigToolLibCaller &direct = *callers[0], &wizard = *callers[1];
};

TEST_F(DemoLibrary, ValidatesHosts) {
    const auto set = [&](const std::wstring& name) { return Answer([&] { direct.SetHost(name); }); };
    for (const wchar_t* good :
         {L"a_b.example.com.", L"10.0.0.1", L"2001:db8::5", L"fe80::1%3", L"сервер.example", L"7host"})
        EXPECT_EQ(set(good), L"ok") << good;
    for (const std::wstring bad : {L"a b", L"-a", L"a-.b", L"a..b", L".", L"10.0.0.256", L"10.0.1", L"1:2", L"[::1]",
                                   L"::1%", L"host:80", L"host/x", L"a\u3000b"})
        EXPECT_EQ(set(bad),
                  L"The backup server [" + bad + L"] is not allowed: it is neither a host name nor an IP address.");
}

TEST_F(DemoLibrary, ValidatesRepositoriesInBothModes) {
    wizard.InitializeWizard();
    const std::vector<std::wstring> four = {L"REP-0001", L"REP-0002", L"REP-0003", L"REP-0004"};
    const std::pair<std::vector<std::wstring>, const wchar_t*> selections[] = {
        {four, L"ok"},
        {{}, L"No repository is selected: at least one is needed."},
        {{L"1", L"2", L"3", L"4", L"5"}, L"5 repositories are not allowed: at most 4 can be selected."},
        {{L"REP-0002", L"REP-0002"}, L"The repository [REP-0002] is selected twice: each copy needs one of its own."},
        {{L"rep-0001"},
         L"The repository [rep-0001] is not known to the backup server. Known repositories: REP-0001, REP-0002, "
         L"REP-0003, REP-0004, REP-0005."},
    };
    for (CConfigToolLibCaller* caller : {&direct, &wizard}) {
        for (const auto& [ids, answer] : selections) EXPECT_EQ(Select(*caller, ids), answer);
    }
    host.Scenario("<Server edition='1'/>");
    EXPECT_EQ(Select(direct, four), L"ok");
    EXPECT_EQ(Select(wizard, four), L"4 repositories are not allowed: Oracle Standard Edition (SE) is limited to one.");
}

TEST_F(DemoLibrary, ReportsAWrongScenario) {
    host.Scenario("<Function name='SetHots'/>");
    EXPECT_THAT(Answer([&] { wizard.Cancel(); }), HasSubstr(L"there is no function [SetHots] that could fail"));
    SetEnvironmentVariableW(L"ORMACON_DEMO_SCENARIO", test_support::BesideProgram(L"scenario.sample.xml").c_str());
    EXPECT_EQ(Answer([&] { wizard.Commit(); }), L"The backup server does not answer.");
}

TEST_F(DemoLibrary, CountsFreesAndSurvivesWrongOnes) {
    const auto function = [](auto type, const char* name) {
        return reinterpret_cast<decltype(type)>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"OrmaconLib.dll"), name)));
    };
    LibraryText range = nullptr;
    LibraryError error = nullptr;
    for (int i = 0; i < 2; ++i)  // the first one is leaked
        function(GetTextFn(), "GetParallelismRangeString")(&range, &error);
    wchar_t own[] = L"not allocated by the library";
    for (wchar_t* text : {range, range, own, LibraryText()}) function(FreeStringFn(), "FreeString")(text);
    EXPECT_NE(function(GetResultFn(), "GetResult")(&range, nullptr, &error), 0);
    std::int32_t count = 0;
    LibraryRecords records = nullptr;
    function(GetTBRRepositoriesFn(), "GetTBRRepositories")(&records, &count, &error);
    for (const int wrong : {1, 0}) function(FreeRepositoriesFn(), "FreeRepositories")(records, count + wrong);
    EXPECT_EQ(FileText(folder / "report.txt"),
              "texts=3/1 arrays=1/1 wrong=4\nFreeRepositories=2\nFreeString=4\nGetParallelismRangeString=2\n"
              "GetResult=1\nGetTBRRepositories=1\n");
}

TEST_F(DemoLibrary, ExportsTheValuesOfTheWizard) {
    wizard.InitializeWizard();
    wizard.SetHost(L"backup01");
    wizard.SetPort(10006);
    wizard.SetCredentials(L"CORP", L"oracle", L"Tiger7");
    EXPECT_EQ(Select(wizard, {L"REP-0003", L"REP-0001"}), L"ok");
    wizard.SetParallelism(4);
    const std::wstring settings = folder.wstring() + L"/settings.xml", script = folder.wstring() + L"/rman.txt";
    wizard.ExportTovakConfig(settings);
    EXPECT_THAT(FileText(settings), HasSubstr(R"(<Server host="backup01" port="10006")"));
    EXPECT_THAT(FileText(settings), HasSubstr(R"(<Repository id="REP-0003" name="Encrypted Vault")"));
    EXPECT_THAT(FileText(settings), HasSubstr(R"(name="Encrypted Vault" capacity="10995116277760" freeSpace="852)"));
    wizard.ExportRMANConfig(script);
    const std::string plugin = test_support::BesideProgram(L"TovakRmanPlugin.dll").string();
    EXPECT_THAT(FileText(script),
                testing::EndsWith("CONFIGURE DEFAULT DEVICE TYPE TO 'SBT_TAPE';\r\n"
                                  "CONFIGURE DEVICE TYPE 'SBT_TAPE' PARALLELISM 4 BACKUP TYPE TO BACKUPSET;\r\n"
                                  "CONFIGURE CHANNEL DEVICE TYPE 'SBT_TAPE' PARMS 'SBT_LIBRARY=" +
                                  plugin +
                                  "' FORMAT '%d_%U';\r\n"
                                  "CONFIGURE DATAFILE BACKUP COPIES FOR DEVICE TYPE 'SBT_TAPE' TO 2;\r\n"
                                  "CONFIGURE ARCHIVELOG BACKUP COPIES FOR DEVICE TYPE 'SBT_TAPE' TO 2;\r\n"));
}

TEST_F(DemoLibrary, KeepsThePasswordAndItsOwnFilesUntilUninstall) {
    const std::wstring password = L"Tiger-7pä\U0001F511ß密\t\x1 \xD800 <&#x41;>";  // XML could not even hold it
    const auto stored_in = folder / L"new folder" / L"\u0434.xml";
    SetEnvironmentVariableW(L"ORMACON_DEMO_STATE", stored_in.c_str());
    direct.SetCredentials(L"CORP & <Söhne> \"'&#x41;", L"  оператор \U0001F512  ", password);
    ConfigurationSnapshot stored;
    direct.GetConfig(stored);
    EXPECT_EQ(stored.domain + stored.user_name, L"CORP & <Söhne> \"'&#x41;  оператор \U0001F512  ");
    EXPECT_EQ(stored.password, password);
    // The password's begin as it is, and in hexadecimal digits of UTF-8 and UTF-16.
    for (const char* form : {"Tiger", "54696765", "5400690067006500"})
        EXPECT_THAT(FileText(stored_in), Not(HasSubstr(form)));

    const std::wstring left_by_a_killed_process = stored_in.wstring() + L".0a1b2c3d.tmp";
    const std::wstring users_own = stored_in.wstring() + L".tmp";
    for (const auto& path : {left_by_a_killed_process, users_own}) test_support::WriteFileText(path, "x");
    for (int i = 0; i < 2; ++i) direct.Uninstall();
    EXPECT_TRUE(std::filesystem::remove(users_own));
    EXPECT_TRUE(std::filesystem::is_empty(folder / L"new folder"));
}

TEST_F(DemoLibrary, ClosesTheStateFileToOrdinaryAccounts) {
    for (const char* name : {"state.xml", "state.xml", "state.xml.lock"}) {  // created, then replaced
        direct.SetPort(1);
        const std::wstring list = test_support::AccessList(folder / name);
        EXPECT_THAT(list, HasSubstr(L"(A;;FA;;;SY)"));
        for (const wchar_t* group : {L";WD)", L";BU)", L";AU)"}) EXPECT_THAT(list, Not(HasSubstr(group)));
    }
}

TEST_F(DemoLibrary, KeepsADamagedStateFileAndAnUnreadablePassword) {
    test_support::WriteFileText(state, "<OrmaconDemoState><Server port='80x'/></OrmaconDemoState>");
    EXPECT_EQ(Answer([&] { direct.SetPort(1); }),
              L"The file " + state.wstring() + L" cannot be used: the value [80x] of port is not a number (line 1)");
    EXPECT_THAT(FileText(state), HasSubstr("'80x'"));
    for (const std::string digits : {"0", "00ff"}) {  // damaged, and as from another host
        test_support::WriteFileText(state, "<OrmaconDemoState><Server/><Account protectedPassword='" + digits +
                                               "'/><Repositories/><Channels/></OrmaconDemoState>");
        direct.SetPort(2);
        EXPECT_THAT(FileText(state), HasSubstr("protectedPassword=\"" + digits + "\""));
        ConfigurationSnapshot stored;
        EXPECT_THAT(Answer([&] { direct.GetConfig(stored); }),
                    HasSubstr(L"Set it again with Ormacon.exe --set-credentials."));
        direct.SetCredentials(L"", L"u", L"new");
        direct.GetConfig(stored);
        EXPECT_EQ(stored.password + std::to_wstring(stored.port), L"new2");
    }
}

// Changes a value again and again, and reads each change back.
void Change(void (CConfigToolLibCaller::*set)(int), auto value) {
    CConfigToolLibCaller library(CallerMode::Direct);
    for (int number = 1; number <= 50; ++number) {
        ConfigurationSnapshot stored;
        (library.*set)(number);
        library.GetConfig(stored);
        ASSERT_EQ(stored.*value, number);
    }
}

// The other process of the test below.
TEST(OtherProcess, DISABLED_ChangesThePort) { Change(&CConfigToolLibCaller::SetPort, &ConfigurationSnapshot::port); }

TEST_F(DemoLibrary, LosesNoChangeOfTwoProcesses) {
    for (const auto* own : {L"ORMACON_DEMO_REPORT", L"TEST_PREMATURE_EXIT_FILE"}) SetEnvironmentVariableW(own, nullptr);
    const intptr_t other = _wspawnl(_P_NOWAIT, platform::program_path().c_str(), L"demo_library_test",
                                    L"--gtest_filter=OtherProcess.*", L"--gtest_also_run_disabled_tests", nullptr);
    ConfigurationSnapshot stored;
    while (direct.GetConfig(stored), stored.port == 0) Sleep(1);  // it has begun
    Change(&CConfigToolLibCaller::SetParallelism, &ConfigurationSnapshot::parallelism);
    int status = 1;
    EXPECT_EQ(_cwait(&status, other, 0), other);
    EXPECT_EQ(status, 0);
    direct.GetConfig(stored);
    EXPECT_EQ(std::pair(stored.port, stored.parallelism), std::pair(50, 50));
}

}  // namespace
