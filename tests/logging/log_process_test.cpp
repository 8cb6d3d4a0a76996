// The log of a whole process. The child processes are this program again, with one of the tests at the end.
#include <iostream>
#include <regex>

#include "common/exc/raise.h"
#include "common/logging/open_log.h"
#include "common/platform/module.h"
#include "common/platform/versions.h"
#include "tests/logging/faked_system.h"
#include "tests/logging/log_test_kit.h"
#include "tests/support/recording_sink.h"
#include "tests/support/test_registry.h"

using namespace logging;
using namespace log_test;
using test_support::test_log;
using testing::HasSubstr;

namespace {

struct static_object_t {
    ~static_object_t() {
        if (!logs) return;
        test_log.log({.level = 3, .text = "static object ends"});
        std::cout << "printed at the end" << std::endl;
    }
    bool logs = false;
} static_object;

}  // namespace

TEST(child, DISABLED_logs_and_ends) {
    test_support::CTestRegistry registry;
    registry.SetText(L"SOFTWARE\\Tovak\\Tovak Central", L"LogDirectory", fs::current_path().wstring());
    initialise(test_log, L"Sub", L"Ormacon.log");
    test_log.log({.level = 4, .depth = 1, .text = "a failure"});
    std::cout << "printed by " << GetCurrentProcessId() << std::endl;
    static_object.logs = true;
}

TEST(child, DISABLED_loses_records) {
    open_log(test_log, {(fs::current_path() / L"Ormacon.log").wstring(), {}, {}});
    faked_system.write_error = [](const std::wstring& name) { return name == L"Ormacon.log" ? ERROR_DISK_FULL : 0; };
    for (int i = 0; i < 2; ++i) test_log.info("lost");
}

namespace {

void run_child(const CTestFolder& folder, const std::wstring& arguments) {
    const std::wstring command = L"cd /d \"" + folder.path.wstring() + L"\" && \"" + platform::program_path() +
                                 L"\" --gtest_also_run_disabled_tests --gtest_filter=child.DISABLED_" + arguments;
    EXPECT_EQ(_wsystem(command.c_str()), 0);
}

}  // namespace

TEST(log_process, says_at_its_end_how_many_records_are_missing) {
    const CTestFolder folder;
    run_child(folder, L"loses_records 2>errors");
    const std::string reason = exc::get_error_text(ERROR_DISK_FULL);
    EXPECT_EQ(FileText(folder / L"errors"), "Records that could not be written to the log: 3. " + reason + "\r\n");
}

TEST(log_process, header_echo_and_copy_until_the_very_end) {
    const CTestFolder folder;
    run_child(folder, L"logs_and_ends -log -verbose >output");
    const std::string output = FileText(folder / L"output");
    std::smatch process;
    ASSERT_TRUE(std::regex_search(output, process, std::regex("printed by (\\d+)")));
    const std::string separator(77, '=');
    const std::vector<std::string> expected{
        separator,
        "Path to the executable module: " + fs::path(platform::program_path()).string(),
        "Module version: ",
        "Comments: ",
        "Process Id: " + process.str(1),
        "OS version: " + platform::os_version_text(),
        separator,
        "ERR |  a failure",
        process.str(),
        "WARN|static object ends",
        "printed at the end",
        "Clearing collection of cout multiplexors."};
    EXPECT_EQ(texts_in(folder / L"Sub\\Ormacon.log"), expected);
    EXPECT_THAT(output, HasSubstr("Info     " + separator + "\r\nInfo     Path to the"));
    EXPECT_THAT(output, HasSubstr("Warning  static object ends\r\n"));
}

TEST(log_process, opening_twice_closing_and_failing_to_open) {
    const CTestFolder folder;
    const std::wstring path = (folder / L"a\\b\\Ormacon.log").wstring();
    for (int run = 0; run < 2; ++run) open_log(test_log, {path, {}, {}});
    EXPECT_EQ(log_path(), path);
    close_log();
    EXPECT_THAT(texts_in(path), testing::Contains("Clearing collection of cout multiplexors.").Times(2));
    using testing::ThrowsMessage;
    EXPECT_THAT([] { log_path(); },
                ThrowsMessage<exc::runtime_exc_t>("Value of the log path is unavailable: log is not initialized yet."));

    const system_guard_t guard;
    test_support::CTestRegistry registry;
    faked_system.folder_error = static_cast<HRESULT>(0x80070002);
    EXPECT_THAT(
        [] { initialise(test_log, L"Sub", L"A.log"); },
        ThrowsMessage<exc::win_sys_exc_t>(HasSubstr("\nCannot get the common application-data folder.\n--tr:Error "
                                                    "code: 0x80070002\nFailed to initialize log [Sub\\A.log].\n"
                                                    "Cannot init logging")));
}

TEST(log_process, warns_of_foreign_folders_above_the_log_and_of_a_missing_output) {
    const CTestFolder folder;
    const system_guard_t guard;
    faked_system.is_foreign = [](const std::wstring& name) { return name == L"a" || name == L"shared"; };
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    SetStdHandle(STD_OUTPUT_HANDLE, nullptr);
    const std::wstring path = (folder / L"shared\\a\\b\\Ormacon.log").wstring();
    open_log(test_log, {path, {}, {.echo = true}, (folder / L"Shared").wstring()});
    close_log();
    SetStdHandle(STD_OUTPUT_HANDLE, output);
    std::vector<std::string> warnings = texts_in(path);
    std::erase_if(warnings, [](const std::string& text) { return !text.starts_with("WARN|"); });
    EXPECT_THAT(warnings, testing::ElementsAre("WARN|Error: Failed to initialize stdout log.",
                                               "WARN|Standard output is not available.",
                                               "WARN|Folder [" + (folder / L"shared\\a").string() +
                                                   "] belongs to another account, which can replace what is in it."));
}

// The program of kill_test.py. It announces each record that was logged.
TEST(child, DISABLED_writes) {
    constexpr size_limits_t limits{6000, 1000};
    open_log(test_log, {(fs::current_path() / L"Ormacon.log").wstring(), limits, {}});
    std::cout << "ready" << std::endl;
    int round = 0, count = 0;
    std::cin >> round >> count;
    for (int number = 1; number <= count; ++number) {
        const std::string filling(number % 50 == 0 ? 20'000 : static_cast<std::size_t>(number * 37 % 400), '.');
        test_log.info(std::to_string(round) + " " + std::to_string(number) + filling + "|");
        std::cout << '!' << std::flush;
    }
}
