#include <process.h>

#include "tests/demo_library/demo_library_test.h"
#include "tests/support/access_list.h"

using testing::HasSubstr;
using testing::Not;

namespace {

constexpr wchar_t server[] = L"резерв.example.com";
constexpr wchar_t domain[] = L"CORP & <Söhne> \"'&#x41;";
constexpr wchar_t user_name[] = L"  оператор \U0001F512  ";
constexpr wchar_t password[] = L"Tiger-7pä\U0001F511ß密\t\x1 \xD800 <&#x41;>";  // XML could not even hold it

}  // namespace

TEST_F(demo_library_test, every_value_survives_in_the_file_and_uninstall_removes_it) {
    const auto state = folder / L"new folder" / L"\u0434.xml";
    SetEnvironmentVariableW(L"ORMACON_DEMO_STATE", state.c_str());
    direct.SetHost(server);
    direct.SetPort(10006);
    direct.SetCredentials(domain, user_name, password);
    EXPECT_EQ(select(direct, {L"REP-0003", L"REP-0001"}), L"ok");
    direct.SetParallelism(64);

    ConfigurationSnapshot stored;
    stored.repositories.resize(1);
    direct.GetConfig(stored);
    EXPECT_EQ(stored.host, server);
    EXPECT_EQ(stored.port, 10006);
    EXPECT_EQ(stored.domain, domain);
    EXPECT_EQ(stored.user_name, user_name);
    EXPECT_EQ(stored.password, password);
    EXPECT_EQ(stored.parallelism, 64);
    EXPECT_THAT(ids_of(stored.repositories), testing::ElementsAre(L"", L"REP-0003", L"REP-0001"));
    host.ExpectMemoryBalanced();

    // The password's begin as it is, in UTF-16, and in hexadecimal digits of either.
    const std::string utf16("T\0i\0g\0e\0r", 9);
    for (const std::string& form :
         {std::string("Tiger"), utf16, std::string("54696765"), std::string("5400690067006500")})
        EXPECT_THAT(FileText(state), Not(HasSubstr(form)));

    const auto beside = [&](const wchar_t* end) { return std::filesystem::path(state.wstring() + end); };
    const auto left_by_a_killed_process = beside(L".0a1b2c3d.tmp"), users_own = beside(L".tmp");
    for (const auto& path : {left_by_a_killed_process, users_own}) test_support::WriteFileText(path, "x");
    for (int i = 0; i < 2; ++i) direct.Uninstall();
    EXPECT_TRUE(std::filesystem::remove(users_own));
    EXPECT_TRUE(std::filesystem::is_empty(folder / L"new folder"));
}

TEST_F(demo_library_test, state_file_is_closed_to_ordinary_accounts) {
    for (const char* name : {"state.xml", "state.xml", "state.xml.lock"}) {  // created, then replaced
        direct.SetPort(1);
        const std::wstring list = test_support::access_list(folder / name);
        EXPECT_THAT(list, HasSubstr(L"(A;;FA;;;SY)"));
        for (const wchar_t* group : {L";WD)", L";BU)", L";AU)"}) EXPECT_THAT(list, Not(HasSubstr(group)));
    }
}

TEST_F(demo_library_test, damaged_state_file_is_named_and_kept) {
    const std::wstring path = (folder / "state.xml").wstring();
    const auto outcome_with = [&](const char* bytes) {
        test_support::WriteFileText(path, bytes);
        return answer([&] { direct.SetPort(1); });
    };
    const std::wstring start = L"The file " + path + L" cannot be used: ";
    EXPECT_THAT(outcome_with("<OrmaconDemoState>"), testing::StartsWith(start));
    EXPECT_EQ(outcome_with("<OrmaconDemoState><Server port='80x'/></OrmaconDemoState>"),
              start + L"the value [80x] of port is not a number (line 1)");
    EXPECT_THAT(FileText(path), HasSubstr("'80x'"));
}

TEST_F(demo_library_test, unreadable_password_is_kept_until_it_is_set_again) {
    for (const std::string digits : {"0", "00ff"}) {  // damaged, and as from another host
        test_support::WriteFileText(folder / "state.xml",
                                    "<OrmaconDemoState><Server host='a' port='1'/><Account userName='u' "
                                    "protectedPassword='" +
                                        digits + "'/><Repositories/><Channels/></OrmaconDemoState>");
        direct.SetPort(2);
        EXPECT_THAT(FileText(folder / "state.xml"), HasSubstr("protectedPassword=\"" + digits + "\""));
        wizard.InitializeWizard();
        ConfigurationSnapshot stored;
        for (CConfigToolLibCaller* caller : {&direct, &wizard})
            EXPECT_THAT(answer([&] { caller->GetConfig(stored); }),
                        HasSubstr(L"Set it again with Ormacon.exe --set-credentials."));
        direct.SetCredentials(L"", L"u", L"new");
        direct.GetConfig(stored);
        EXPECT_EQ(stored.password + std::to_wstring(stored.port), L"new2");
    }
}

TEST_F(demo_library_test, lock_that_is_never_released_ends_the_call) {
    direct.SetPort(1);
    const std::wstring path = (folder / "state.xml.lock").wstring();
    const HANDLE lock = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    EXPECT_THAT(answer([&] { direct.SetPort(2); }),
                testing::StartsWith(L"Another program has kept the file " + path + L" locked for five seconds: "));
    CloseHandle(lock);
    EXPECT_EQ(answer([&] { direct.SetPort(3); }), L"ok");
}

namespace {

// Changes a value again and again, and reads each change back.
void change(void (CConfigToolLibCaller::*set)(int), auto value) {
    CConfigToolLibCaller library(CallerMode::Direct);
    for (int number = 1; number <= 50; ++number) {
        ConfigurationSnapshot stored;
        (library.*set)(number);
        library.GetConfig(stored);
        ASSERT_EQ(stored.*value, number);
    }
}

}  // namespace

// The child processes of the test below.
TEST(child, DISABLED_port) { change(&CConfigToolLibCaller::SetPort, &ConfigurationSnapshot::port); }
TEST(child, DISABLED_parallelism) {
    change(&CConfigToolLibCaller::SetParallelism, &ConfigurationSnapshot::parallelism);
}

TEST_F(demo_library_test, two_processes_lose_no_change_to_one_configuration) {
    SetEnvironmentVariableW(L"ORMACON_DEMO_REPORT", nullptr);
    std::vector<intptr_t> children;
    for (const wchar_t* filter : {L"--gtest_filter=child.DISABLED_port", L"--gtest_filter=child.DISABLED_parallelism"})
        children.push_back(_wspawnl(_P_NOWAIT, platform::program_path().c_str(), L"demo_library_test", filter,
                                    L"--gtest_also_run_disabled_tests", nullptr));
    for (const intptr_t child : children) {
        int status = 1;
        EXPECT_EQ(_cwait(&status, child, 0), child);
        EXPECT_EQ(status, 0);
    }
    ConfigurationSnapshot stored;
    direct.GetConfig(stored);
    EXPECT_EQ(stored.port, 50);
    EXPECT_EQ(stored.parallelism, 50);
}
