#include "tests/demo_library/demo_library_test.h"

TEST_F(demo_library_test, scenario_replaces_the_server) {
    host.Scenario(
        "<Server edition='1'/><Repositories generate='1000'><Repository id='A' capacity='0.1' encryption='1'/>"
        "<Repository name='no id'/></Repositories>");
    std::int32_t edition = 0;
    EXPECT_EQ(call<GetScopeEditionFn>("GetScopeEdition", &edition), L"ok");
    EXPECT_EQ(edition, 1);

    for (const char* name : {"GetTBRRepositories", "GetTBRRepositoriesDirect"}) {
        std::int32_t count = 0;
        const LibraryRecords records = repositories(count, name);
        ASSERT_EQ(count, 1002);
        EXPECT_EQ(records[0]->name, nullptr);
        EXPECT_EQ(records[0]->capacity, 0.1);
        EXPECT_EQ(records[0]->encryptionEnabled, 1);
        EXPECT_EQ(records[1]->id, nullptr);
        EXPECT_STREQ(records[1001]->name, L"Generated repository 1000");
        taken(records, count);
    }
}

TEST_F(demo_library_test, functions_fail_as_the_scenario_wants) {
    host.Scenario(
        "<Function name='SetHostDirect' fail='&#x41A;aput \xF0\x9F\x94\xA5'/><Function name='SetPortDirect' "
        "failWithoutText='1'/><Function name='UninstallDirect' fail='once' first='1' delay='60'/>");
    EXPECT_EQ(call<SetHostFn>("SetHostDirect", L"backup01"), L"Кaput \U0001F525");
    EXPECT_EQ(call<SetPortFn>("SetPortDirect", 1), L"no text");
    EXPECT_FALSE(std::filesystem::exists(folder / "state.xml"));
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(plain("UninstallDirect"), L"once");
    EXPECT_GE(GetTickCount64() - start, 45u);  // the clock's step is up to 16 ms
    EXPECT_EQ(plain("UninstallDirect"), L"ok");
}

TEST_F(demo_library_test, access_violation_leaves_the_library) {
    host.Scenario("<Function name='Cancel' crash='access-violation'/>");
    const auto crash = [&] {
        SetUnhandledExceptionFilter([](EXCEPTION_POINTERS* failure) -> LONG {
            ExitProcess(failure->ExceptionRecord->ExceptionCode);  // no debugger, no error box
        });
        plain("Cancel");
    };
    EXPECT_EXIT(crash(), testing::ExitedWithCode(static_cast<int>(EXCEPTION_ACCESS_VIOLATION)), "");
}

TEST_F(demo_library_test, wrong_scenario_is_reported_by_every_call) {
    const std::wstring start = L"The file " + (folder / "scenario.xml").wstring() + L" cannot be used: ";
    host.Scenario("<Function name='SetHots'/>");
    EXPECT_EQ(plain("Cancel"), start + L"there is no function [SetHots] that could fail");
    host.Scenario("<Repository/>");
    EXPECT_EQ(plain("Cancel"), start + L"there is no element Repository in a scenario");
    std::filesystem::remove(folder / "scenario.xml");
    EXPECT_EQ(plain("Cancel"), L"There is no scenario file " + (folder / "scenario.xml").wstring());
}

TEST_F(demo_library_test, sample_scenario_is_valid) {
    SetEnvironmentVariableW(L"ORMACON_DEMO_SCENARIO", SAMPLE_SCENARIO);
    EXPECT_EQ(plain("Commit"), L"The backup server does not answer.");
    std::int32_t count = 0;
    const LibraryRecords records = repositories(count);
    EXPECT_THAT(taken(records, count), testing::ElementsAre(L"REP-0001", L"REP-0003"));
}

TEST_F(demo_library_test, frees_are_counted_and_wrong_ones_survived) {
    config();
    EXPECT_EQ(FileText(folder / "report.txt"),
              "texts=4/4 arrays=1/1 wrong=0\nFreeRepositories=1\nFreeString=4\nGetConfig=1\n");

    LibraryText range = nullptr;
    for (int i = 0; i < 2; ++i) call<GetTextFn>("GetParallelismRangeString", &range);  // the first one is leaked
    EXPECT_STREQ(range, L"1-64");
    wchar_t own[] = L"not handed out";
    for (wchar_t* text : {range, range, own, LibraryText()}) function<FreeStringFn>("FreeString")(text);
    std::int32_t count = 0;
    const LibraryRecords records = repositories(count);
    for (const int wrong : {1, 0}) function<FreeRepositoriesFn>("FreeRepositories")(records, count + wrong);
    function<FreeArrayStringFn>("FreeArrayString")();
    EXPECT_EQ(FileText(folder / "report.txt"),
              "texts=6/5 arrays=2/2 wrong=4\nFreeArrayString=1\nFreeRepositories=3\nFreeString=8\nGetConfig=1\n"
              "GetParallelismRangeString=2\nGetTBRRepositories=1\n");
}
