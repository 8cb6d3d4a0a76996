#include "tests/demo_library/demo_library_test.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

TEST_F(DemoLibrary, ValidatesAccountAndHost) {
    EXPECT_EQ(Answer([&] { direct.SetCredentials(L"d", L"", L"Tiger7"); }),
              L"The user name is empty: an account of the backup server is needed.");
    const auto set = [&](const std::wstring& name) { return Answer([&] { direct.SetHost(name); }); };
    for (const wchar_t* good :
         {L"a_b.example.com.", L"10.0.0.1", L"2001:db8::5", L"fe80::1%3", L"сервер.example", L"7host"})
        EXPECT_EQ(set(good), L"ok") << good;
    for (const std::wstring bad : {L"a b", L"-a", L"a-.b", L"a..b", L".", L"10.0.0.256", L"10.0.1", L"1:2", L"[::1]",
                                   L"::1%", L"host:80", L"host/x", L"a\u3000b"})
        EXPECT_EQ(set(bad),
                  L"The backup server [" + bad + L"] is not allowed: it is neither a host name nor an IP address.");
    EXPECT_EQ(set(L"a\x1"), L"The backup server is not allowed: it contains a character that cannot be stored.");
    EXPECT_THAT(FileText(state), HasSubstr("host=\"7host\""));
}

TEST_F(DemoLibrary, ValidatesNumbersAndRepositoriesInBothModes) {
    host.Scenario("<Server lowestParallelism='2' highestParallelism='16'/>");
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
        for (const int good : {1, 65535}) caller->SetPort(good);
        for (const int bad : {0, 65536, -1})
            EXPECT_EQ(Answer([&] { caller->SetPort(bad); }),
                      L"The port " + std::to_wstring(bad) + L" is not allowed: ports are 1 to 65535.");
        for (const int good : {2, 16}) caller->SetParallelism(good);
        for (const int bad : {1, 17})
            EXPECT_EQ(Answer([&] { caller->SetParallelism(bad); }),
                      L"The parallelism " + std::to_wstring(bad) + L" is not allowed: it is 2 to 16.");
        for (const auto& [ids, answer] : selections) EXPECT_EQ(Select(*caller, ids), answer);
    }
    EXPECT_EQ(wizard.GetParallelismRangeString(), L"2-16");
    host.Scenario("<Server edition='1'/>");
    EXPECT_EQ(Select(direct, four), L"ok");
    EXPECT_EQ(Select(wizard, four), L"4 repositories are not allowed: Oracle Standard Edition (SE) is limited to one.");
}

TEST_F(DemoLibrary, ReportsAWrongScenario) {
    std::string deep = "<Server>\n";
    while (deep.size() < 100'000) deep += "<a b='/>'>";
    const std::pair<std::string, std::wstring> cases[] = {
        {"<Function name='SetHots'/>", L"there is no function [SetHots] that could fail"},
        {"<Function name='FreeString'/>", L"there is no function [FreeString] that could fail"},
        {"<Repository/>", L"there is no element Repository in a scenario"},
        {deep, L"Elements are nested more than 32 deep (line 2)."},
        {"<a>\xF0</a>", L"The text is not valid UTF-8: "}};
    for (const auto& [elements, reason] : cases) {
        host.Scenario(elements);
        EXPECT_THAT(Answer([&] { wizard.Cancel(); }),
                    StartsWith(L"The file " + folder.wstring() + L"\\scenario.xml cannot be used: " + reason));
    }
    SetEnvironmentVariableW(L"ORMACON_DEMO_SCENARIO", test_support::BesideProgram(L"scenario.sample.xml").c_str());
    EXPECT_EQ(Answer([&] { wizard.Commit(); }), L"The backup server does not answer.");
    std::vector<RepositoryEntry> offered;
    wizard.GetTBRRepositories(offered);
    EXPECT_THAT(IdsOf(offered), ElementsAre(L"REP-0001", L"REP-0003"));
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
    std::int32_t count = 0;
    LibraryRecords records = nullptr;
    function(GetTBRRepositoriesFn(), "GetTBRRepositories")(&records, &count, &error);
    for (const int wrong : {1, 0}) function(FreeRepositoriesFn(), "FreeRepositories")(records, count + wrong);
    EXPECT_EQ(FileText(folder / "report.txt"),
              "texts=2/1 arrays=1/1 wrong=4\nFreeRepositories=2\nFreeString=4\nGetParallelismRangeString=2\n"
              "GetTBRRepositories=1\n");
}

class DemoWizard : public DemoLibrary {
protected:
    void FillIn() {
        wizard.InitializeWizard();
        wizard.SetHost(L"backup01");
        wizard.SetPort(10006);
        wizard.SetCredentials(L"CORP", L"oracle", L"Tiger7");
        EXPECT_EQ(Select(wizard, {L"REP-0003", L"REP-0001"}), L"ok");
        wizard.SetParallelism(4);
    }

    std::wstring Commit() {
        return Answer([&] { wizard.Commit(); });
    }
};

TEST_F(DemoWizard, KeepsItsValuesUntilCommitCancelOrANewStart) {
    const std::wstring not_initialised = L"The wizard is not initialised: InitializeWizard must be called first.";
    FillIn();
    wizard.Cancel();
    EXPECT_EQ(Answer([&] { wizard.SetPort(1); }), not_initialised);
    FillIn();
    wizard.InitializeWizard();
    EXPECT_EQ(wizard.GetResult(), L"Nothing was applied: the configuration of this host is unchanged.\r\n");
    EXPECT_EQ(Commit(), L"The backup server is empty: a host name or an IP address is needed.");
    FillIn();
    std::filesystem::create_directories(state / "in the way");
    EXPECT_THAT(Commit(), HasSubstr(state.wstring()));
    std::filesystem::remove_all(state);
    EXPECT_EQ(Commit(), L"ok");
    ConfigurationSnapshot stored;
    direct.GetConfig(stored);
    EXPECT_EQ(stored.host + stored.password, L"backup01Tiger7");
    EXPECT_THAT(IdsOf(stored.repositories), ElementsAre(L"REP-0003", L"REP-0001"));
    EXPECT_EQ(Commit(), not_initialised);
}

TEST_F(DemoWizard, ExportsItsValuesIntoNewFoldersAndReplacesOnlyItsOwnFile) {
    FillIn();
    const std::wstring settings = folder.wstring() + L"/export/sub/tovak_config.xml";
    const std::wstring script = folder.wstring() + L"/export/rman_config.txt", users_own = script + L".tmp";
    wizard.ExportTovakConfig(settings);
    EXPECT_THAT(FileText(settings), testing::AllOf(HasSubstr("<Server host=\"backup01\" port=\"10006\""),
                                                   HasSubstr("<Repository id=\"REP-0003\" name=\"Encrypted Vault\""),
                                                   testing::Not(HasSubstr("Tiger7"))));
    for (const std::wstring& path : {users_own, script}) test_support::WriteFileText(path, "x");
    wizard.ExportRMANConfig(script);
    const std::string plugin = encoding::wide_to_utf8(test_support::BesideProgram(L"TovakRmanPlugin.dll").wstring());
    EXPECT_THAT(FileText(script),
                testing::EndsWith("CONFIGURE DEFAULT DEVICE TYPE TO 'SBT_TAPE';\r\n"
                                  "CONFIGURE DEVICE TYPE 'SBT_TAPE' PARALLELISM 4 BACKUP TYPE TO BACKUPSET;\r\n"
                                  "CONFIGURE CHANNEL DEVICE TYPE 'SBT_TAPE' PARMS 'SBT_LIBRARY=" +
                                  plugin +
                                  "' FORMAT '%d_%U';\r\n"
                                  "CONFIGURE DATAFILE BACKUP COPIES FOR DEVICE TYPE 'SBT_TAPE' TO 2;\r\n"
                                  "CONFIGURE ARCHIVELOG BACKUP COPIES FOR DEVICE TYPE 'SBT_TAPE' TO 2;\r\n"));
    const std::pair<std::wstring, const wchar_t*> refused[] = {{users_own + L"\\b.xml", L" (error 3)"},
                                                               {folder.wstring() + L"\\export\\sub", L" (error 5)"}};
    for (const auto& [path, reason] : refused)
        EXPECT_THAT(Answer([&] { wizard.ExportTovakConfig(path); }),
                    testing::AllOf(StartsWith(L"Cannot write the file "), testing::EndsWith(reason)));
    EXPECT_EQ(Answer([&] { wizard.ExportRMANConfig(L""); }), L"The path of a file is empty");
    EXPECT_EQ(FileText(users_own), "x");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "export"), {}), 3);
}

}  // namespace
