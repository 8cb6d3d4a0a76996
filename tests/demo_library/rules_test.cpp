#include "tests/demo_library/demo_library_test.h"

TEST_F(demo_library_test, validates_the_form_of_account_and_host) {
    EXPECT_EQ(answer([&] { direct.SetCredentials(L"d", L"", L"Tiger7"); }),
              L"The user name is empty: an account of the backup server is needed.");
    EXPECT_FALSE(std::filesystem::exists(folder / "state.xml"));
    const auto set = [&](const std::wstring& name) { return answer([&] { direct.SetHost(name); }); };
    for (const wchar_t* good :
         {L"backup01", L"a_b.example.com.", L"10.0.0.1", L"2001:db8::5", L"fe80::1%3", L"сервер.example", L"7host"})
        EXPECT_EQ(set(good), L"ok") << good;
    const std::wstring long_label(64, L'a');
    for (const std::wstring& bad :
         std::initializer_list<std::wstring>{L"a b", L"-a", L"a-.b", L"a..b", L".", L"10.0.0.256", L"10.0.1", L"1:2",
                                             L"[::1]", L"::1%", L"host:80", L"host/x", L"a\u3000b", long_label})
        EXPECT_EQ(set(bad),
                  L"The backup server [" + bad + L"] is not allowed: it is neither a host name nor an IP address.");
    EXPECT_EQ(set(L""), L"The backup server is empty: a host name or an IP address is needed.");
    EXPECT_EQ(set(L"a\x1"), L"The backup server is not allowed: it contains a character that cannot be stored.");
    EXPECT_THAT(FileText(folder / "state.xml"), testing::HasSubstr("host=\"7host\""));
}

TEST_F(demo_library_test, validates_numbers_and_repositories_in_both_modes) {
    host.Scenario("<Server lowestParallelism='2' highestParallelism='16'/>");
    wizard.InitializeWizard();
    for (CConfigToolLibCaller* caller : {&direct, &wizard}) {
        for (const int good : {1, 65535}) caller->SetPort(good);
        for (const int bad : {0, 65536, -1})
            EXPECT_EQ(answer([&] { caller->SetPort(bad); }),
                      L"The port " + std::to_wstring(bad) + L" is not allowed: ports are 1 to 65535.");
        for (const int good : {2, 16}) caller->SetParallelism(good);
        for (const int bad : {1, 17, -1})
            EXPECT_EQ(answer([&] { caller->SetParallelism(bad); }),
                      L"The parallelism " + std::to_wstring(bad) + L" is not allowed: it is 2 to 16.");
        EXPECT_EQ(select(*caller, {}), L"No repository is selected: at least one is needed.");
        EXPECT_EQ(select(*caller, {L"REP-0001", L"REP-0002", L"REP-0003", L"REP-0004"}), L"ok");
        EXPECT_EQ(select(*caller, {L"REP-0001", L"REP-0002", L"REP-0003", L"REP-0004", L"REP-0005"}),
                  L"5 repositories are not allowed: at most 4 can be selected.");
        EXPECT_EQ(select(*caller, {L"REP-0002", L"REP-0002"}),
                  L"The repository [REP-0002] is selected twice: each copy needs one of its own.");
        EXPECT_EQ(select(*caller, {L"rep-0001"}),
                  L"The repository [rep-0001] is not known to the backup server. Known repositories: REP-0001, "
                  L"REP-0002, REP-0003, REP-0004, REP-0005.");
    }
    EXPECT_EQ(wizard.GetParallelismRangeString(), L"2-16");
    host.Scenario("<Server edition='1'/>");
    EXPECT_EQ(select(direct, {L"REP-0001", L"REP-0002"}), L"ok");
    EXPECT_EQ(select(wizard, {L"REP-0001", L"REP-0002"}),
              L"2 repositories are not allowed: Oracle Standard Edition (SE) is limited to one.");
}
