#include "tests/demo_library/demo_library_test.h"

TEST_F(demo_library_test, judges_the_form_of_the_host) {
    for (const std::wstring good :
         {L"backup01", L"a_b.example.com.", L"10.0.0.1", L"2001:db8::5", L"fe80::1%3", L"сервер.example", L"7host"})
        EXPECT_EQ(call<SetHostFn>("SetHostDirect", good.c_str()), L"ok") << good;
    const std::wstring long_label(64, L'a');
    for (const std::wstring& bad :
         std::initializer_list<std::wstring>{L"a b", L"-a", L"a-.b", L"a..b", L".", L"10.0.0.256", L"10.0.1", L"1:2",
                                             L"[::1]", L"::1%", L"host:80", L"host/x", L"a\u3000b", long_label})
        EXPECT_EQ(call<SetHostFn>("SetHostDirect", bad.c_str()),
                  L"The backup server [" + bad + L"] is not allowed: it is neither a host name nor an IP address.");
    EXPECT_EQ(call<SetHostFn>("SetHostDirect", L""),
              L"The backup server is empty: a host name or an IP address is needed.");
    EXPECT_EQ(call<SetHostFn>("SetHostDirect", L"a\x1"),
              L"The backup server is not allowed: it holds a character that cannot be stored.");
    EXPECT_EQ(config().host, L"7host");
}

TEST_F(demo_library_test, judges_numbers_in_both_modes) {
    host.Scenario("<Server lowestParallelism='2' highestParallelism='16'/>");
    plain("InitializeWizard");
    for (const char* name : {"SetPort", "SetPortDirect"}) {
        for (const std::int32_t good : {1, 65535}) EXPECT_EQ(call<SetPortFn>(name, good), L"ok");
        for (const std::int32_t bad : {0, 65536, -1})
            EXPECT_EQ(call<SetPortFn>(name, bad),
                      L"The port " + std::to_wstring(bad) + L" is not allowed: ports are 1 to 65535.");
    }
    for (const char* name : {"SetParallelism", "SetParallelismDirect"}) {
        for (const std::int32_t good : {2, 16}) EXPECT_EQ(call<SetParallelismFn>(name, good), L"ok");
        for (const std::int32_t bad : {1, 17, -1})
            EXPECT_EQ(call<SetParallelismFn>(name, bad),
                      L"The parallelism " + std::to_wstring(bad) + L" is not allowed: it is 2 to 16.");
    }
}

TEST_F(demo_library_test, judges_repositories) {
    plain("InitializeWizard");
    for (const char* name : {"SetRepositories", "SetRepositoriesDirect"}) {
        EXPECT_EQ(select(name, {}), L"No repository is selected: at least one is needed.");
        EXPECT_EQ(select(name, {L"REP-0001", L"REP-0002", L"REP-0003", L"REP-0004"}), L"ok");
        EXPECT_EQ(select(name, {L"REP-0001", L"REP-0002", L"REP-0003", L"REP-0004", L"REP-0005"}),
                  L"5 repositories are not allowed: at most 4 can be selected.");
        EXPECT_EQ(select(name, {L"REP-0002", L"REP-0002"}),
                  L"The repository [REP-0002] is selected twice: each copy needs one of its own.");
        EXPECT_EQ(select(name, {L"rep-0001"}),
                  L"The repository [rep-0001] is not known to the backup server. Known repositories: REP-0001, "
                  L"REP-0002, REP-0003, REP-0004, REP-0005.");
    }
    host.Scenario("<Server edition='1'/>");
    EXPECT_EQ(select("SetRepositories", {L"REP-0001", L"REP-0002"}),
              L"2 repositories are not allowed: Oracle Standard Edition (SE) is limited to one.");
    EXPECT_EQ(select("SetRepositories", {L"REP-0001"}), L"ok");
    EXPECT_EQ(select("SetRepositoriesDirect", {L"REP-0001", L"REP-0002"}), L"ok");
}

TEST_F(demo_library_test, refuses_null_arguments_and_an_empty_user_name) {
    const auto credentials = [&](const wchar_t* domain, const wchar_t* user_name, const wchar_t* password) {
        return call<SetCredentialsFn>("SetCredentialsDirect", domain, user_name, password);
    };
    EXPECT_EQ(credentials(nullptr, L"u", L"p"), L"No domain name is given: the text is null.");
    EXPECT_EQ(credentials(L"d", L"", L"p"), L"The user name is empty: an account of the backup server is needed.");
    EXPECT_EQ(call<SetRepositoriesFn>("SetRepositoriesDirect", nullptr, 1), L"The list of repositories is not valid.");
    EXPECT_EQ(call<GetTextFn>("GetParallelismRangeString", nullptr), L"An argument that takes a result is null.");
    EXPECT_EQ(function<SetHostFn>("SetHostDirect")(L"", nullptr), 1);
    EXPECT_FALSE(std::filesystem::exists(folder / "state.xml"));
}
