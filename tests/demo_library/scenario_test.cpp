#include "tests/demo_library/demo_library_test.h"

TEST_F(demo_library_test, functions_fail_as_often_and_as_late_as_wanted) {
    host.Scenario("<Function name='SetPortDirect' fail='&#x41A;aput \xF0\x9F\x94\xA5' first='1' delay='60'/>");
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(answer([&] { direct.SetPort(1); }), L"Кaput \U0001F525");
    EXPECT_GE(GetTickCount64() - start, 45u);  // the clock's step is up to 16 ms
    EXPECT_FALSE(std::filesystem::exists(folder / "state.xml"));
    EXPECT_EQ(answer([&] { direct.SetPort(1); }), L"ok");
}

TEST_F(demo_library_test, wrong_scenario_is_reported_by_every_call) {
    const std::wstring path = (folder / "scenario.xml").wstring();
    std::string deep = "<Server>\n";
    while (deep.size() < 100'000) deep += "<a b='/>'>";
    const std::pair<std::string, std::wstring> cases[] = {
        {"<Function name='SetHots'/>", L"there is no function [SetHots] that could fail"},
        {"<Repository/>", L"there is no element Repository in a scenario"},
        {deep, L"Elements are nested more than 32 deep (line 2)."},
        {"<a>\xF0</a>", L"The text is not valid UTF-8: "}};
    for (const auto& [elements, reason] : cases) {
        host.Scenario(elements);
        EXPECT_THAT(answer([&] { wizard.Cancel(); }),
                    testing::StartsWith(L"The file " + path + L" cannot be used: " + reason));
    }
    std::filesystem::remove(path);
    EXPECT_EQ(answer([&] { wizard.Cancel(); }), L"There is no scenario file " + path);
}

TEST_F(demo_library_test, sample_scenario_is_valid) {
    SetEnvironmentVariableW(L"ORMACON_DEMO_SCENARIO", test_support::BesideProgram(L"scenario.sample.xml").c_str());
    EXPECT_EQ(answer([&] { wizard.Commit(); }), L"The backup server does not answer.");
    std::vector<RepositoryEntry> offered;
    wizard.GetTBRRepositories(offered);
    EXPECT_THAT(ids_of(offered), testing::ElementsAre(L"REP-0001", L"REP-0003"));
}

TEST_F(demo_library_test, frees_are_counted_and_wrong_ones_survived) {
    const auto function = [](auto type, const char* name) {
        return reinterpret_cast<decltype(type)>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"OrmaconLib.dll"), name)));
    };
    const auto free_string = function(FreeStringFn(), "FreeString");
    const auto free_repositories = function(FreeRepositoriesFn(), "FreeRepositories");
    LibraryText range = nullptr;
    LibraryError error = nullptr;
    for (int i = 0; i < 2; ++i)  // the first one is leaked
        function(GetTextFn(), "GetParallelismRangeString")(&range, &error);
    wchar_t own[] = L"not allocated by the library";
    for (wchar_t* text : {range, range, own, LibraryText()}) free_string(text);
    std::int32_t count = 0;
    LibraryRecords records = nullptr;
    function(GetTBRRepositoriesFn(), "GetTBRRepositories")(&records, &count, &error);
    for (const int wrong : {1, 0}) free_repositories(records, count + wrong);
    function(FreeArrayStringFn(), "FreeArrayString")();
    EXPECT_EQ(FileText(folder / "report.txt"),
              "texts=2/1 arrays=1/1 wrong=4\nFreeArrayString=1\nFreeRepositories=2\nFreeString=4\n"
              "GetParallelismRangeString=2\nGetTBRRepositories=1\n");
}
