#include <process.h>

#include "tests/demo_library/demo_library_test.h"

using testing::HasSubstr;
using testing::Not;

namespace {

constexpr wchar_t server[] = L"резерв.example.com";
constexpr wchar_t domain[] = L"CORP & <Söhne> \"'&#x41;";
constexpr wchar_t user_name[] = L"  оператор \U0001F512  ";
constexpr wchar_t password[] = L"Tiger-7pä\U0001F511ß密\t\x1 \xD800 <&#x41;>";  // XML could not even hold it

TEST_F(DemoLibrary, KeepsEveryValueUntilUninstall) {
    const auto stored_in = folder / L"new folder" / L"\u0434.xml";
    SetEnvironmentVariableW(L"ORMACON_DEMO_STATE", stored_in.c_str());
    direct.SetHost(server);
    direct.SetPort(10006);
    direct.SetCredentials(domain, user_name, password);
    EXPECT_EQ(Select(direct, {L"REP-0003", L"REP-0001"}), L"ok");
    direct.SetParallelism(64);

    ConfigurationSnapshot stored;
    stored.repositories.resize(1);
    direct.GetConfig(stored);
    EXPECT_EQ(stored.host + stored.domain + stored.user_name, std::wstring(server) + domain + user_name);
    EXPECT_EQ(stored.password, password);
    EXPECT_EQ(std::pair(stored.port, stored.parallelism), std::pair(10006, 64));
    EXPECT_THAT(IdsOf(stored.repositories), testing::ElementsAre(L"", L"REP-0003", L"REP-0001"));
    host.ExpectMemoryBalanced();

    // The password's begin as it is, in UTF-16, and in hexadecimal digits of either.
    const std::string utf16("T\0i\0g\0e\0r", 9);
    for (const std::string& form :
         {std::string("Tiger"), utf16, std::string("54696765"), std::string("5400690067006500")})
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

TEST_F(DemoLibrary, NamesAndKeepsADamagedStateFile) {
    test_support::WriteFileText(state, "<OrmaconDemoState><Server port='80x'/></OrmaconDemoState>");
    EXPECT_EQ(Answer([&] { direct.SetPort(1); }),
              L"The file " + state.wstring() + L" cannot be used: the value [80x] of port is not a number (line 1)");
    EXPECT_THAT(FileText(state), HasSubstr("'80x'"));
}

TEST_F(DemoLibrary, KeepsAnUnreadablePasswordUntilItIsSetAgain) {
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

TEST_F(DemoLibrary, WaitsForALockOnlyForAWhile) {
    direct.SetPort(1);
    const std::wstring path = state.wstring() + L".lock";
    const HANDLE lock = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    EXPECT_THAT(Answer([&] { direct.SetPort(2); }),
                testing::StartsWith(L"Another program has kept the file " + path + L" locked for five seconds: "));
    CloseHandle(lock);
    EXPECT_EQ(Answer([&] { direct.SetPort(3); }), L"ok");
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
    SetEnvironmentVariableW(L"ORMACON_DEMO_REPORT", nullptr);
    const intptr_t other = _wspawnl(_P_NOWAIT, platform::program_path().c_str(), L"demo_library_test",
                                    L"--gtest_filter=OtherProcess.*", L"--gtest_also_run_disabled_tests", nullptr);
    ConfigurationSnapshot stored;
    while (direct.GetConfig(stored), stored.port == 0) Sleep(1);  // it has begun
    Change(&CConfigToolLibCaller::SetParallelism, &ConfigurationSnapshot::parallelism);
    int status = 1;
    EXPECT_EQ(_cwait(&status, other, 0), other);
    EXPECT_EQ(status, 0);
    direct.GetConfig(stored);
    EXPECT_EQ(stored.port, 50);
    EXPECT_EQ(stored.parallelism, 50);
}

}  // namespace
