// The log of a whole process, and its settings. The child processes are this program again, with one of the tests at
// the end.
#include "common/logging/open_log.h"

#include <iostream>
#include <regex>

#include "common/exc/raise.h"
#include "common/logging/log_settings.h"
#include "common/platform/module.h"
#include "common/platform/owned.h"
#include "common/platform/path.h"
#include "common/platform/versions.h"
#include "tests/logging/log_fixture.h"
#include "tests/support/recording_sink.h"
#include "tests/support/test_registry.h"

using namespace logging;
using namespace log_test;
using test_support::CTestRegistry;
using test_support::test_log;

namespace {

constexpr const wchar_t* product_key = L"SOFTWARE\\Tovak\\Tovak Central";

struct static_object_t {
    ~static_object_t() {
        if (!logs) return;
        test_log.log({.level = 3, .text = "static object ends"});
        std::cout << "printed at the end" << std::endl;
    }
    bool logs = false;
} static_object;

class OpenLog : public LogTest {
protected:
    void run_child(const std::wstring& arguments) const {
        SetEnvironmentVariableW(L"TEST_PREMATURE_EXIT_FILE", nullptr);  // this program's, which its end deletes
        const std::wstring command = L"cd /d \"" + folder.path.wstring() + L"\" && \"" + platform::program_path() +
                                     L"\" --gtest_also_run_disabled_tests --gtest_filter=child.DISABLED_" + arguments;
        EXPECT_EQ(_wsystem(command.c_str()), 0);
    }
};

}  // namespace

TEST(child, DISABLED_logs_and_ends) {
    CTestRegistry registry;
    registry.SetText(product_key, L"LogDirectory", fs::current_path().wstring());
    open_log(test_log, {(fs::current_path() / L"First.log").wstring(), {}, {.echo = true}, {}});
    initialise(test_log, L"Sub", L"Ormacon.log");
    test_log.log({.level = 4, .depth = 1, .text = "a failure"});
    std::cout << "printed by " << GetCurrentProcessId() << std::endl;
    static_object.logs = true;
}

TEST_F(OpenLog, HeaderEchoAndCopyUntilTheVeryEnd) {
    run_child(L"logs_and_ends -log -verbose >output");
    const std::string output = FileText(folder / L"output"), separator(77, '=');
    std::smatch process;
    ASSERT_TRUE(std::regex_search(output, process, std::regex("printed by (\\d+)")));
    EXPECT_EQ(texts_in(folder / L"Sub\\Ormacon.log"),
              (texts_t{separator, "Path to the executable module: " + fs::path(platform::program_path()).string(),
                       "Module version: ", "Comments: ", "Process Id: " + process.str(1),
                       "OS version: " + platform::os_version_text(), separator, "ERR |  a failure", process.str(),
                       "WARN|static object ends", "printed at the end", "Clearing collection of cout multiplexors."}));
    EXPECT_THAT(output, testing::HasSubstr("Info     " + separator + "\r\nInfo     Path to the"));
    EXPECT_THAT(output, testing::HasSubstr("Info     " + separator + "\r\nError      a failure\r\nprinted"));
    EXPECT_THAT(output, testing::HasSubstr("Warning  static object ends\r\n"));
}

// Also the program of kill_test.py. It announces each record that was logged.
TEST(child, DISABLED_writes) {
    open_log(test_log, {(fs::current_path() / L"Ormacon.log").wstring(), {6000, 1000}, {}});
    std::cout << "ready" << std::endl;
    int round = 0, count = 0;
    std::cin >> round >> count;
    for (int number = 1; number <= count; ++number) {
        const std::string filling(number % 50 == 0 ? 20'000 : static_cast<std::size_t>(number * 37 % 400), '.');
        test_log.info(std::to_string(round) + " " + std::to_string(number) + filling + "|");
        std::cout << '!' << std::flush;
    }
}

TEST_F(OpenLog, ReportsForeignFoldersAndAMissingOutputAndAtItsEndLostRecords) {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE), error = GetStdHandle(STD_ERROR_HANDLE);
    const platform::unique_file errors(
        CreateFileW((folder / L"errors").c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW, 0, nullptr));
    make_foreign([](const std::wstring& name) { return name == L"a" || name == L"shared"; });
    const std::wstring log = folder / L"shared\\a\\b\\Ormacon.log";
    open_log(test_log, {log, {}, {}});
    SetStdHandle(STD_OUTPUT_HANDLE, nullptr);
    open_log(test_log, {log, {}, {.echo = true}, (folder / L"Shared").wstring()});
    SetStdHandle(STD_OUTPUT_HANDLE, output);
    SetStdHandle(STD_ERROR_HANDLE, errors.get());
    fail_to_write(ERROR_DISK_FULL, [](const std::wstring& name) { return name == L"Ormacon.log"; });
    for (int i = 0; i < 2; ++i) test_log.info("lost");
    EXPECT_EQ(log_path(), log);
    close_log();
    EXPECT_EQ(test_support::FailureOf([] { log_path(); }),
              "Value of the log path is unavailable: log is not initialized yet.");
    SetStdHandle(STD_ERROR_HANDLE, error);
    texts_t warnings = texts_in(log);
    EXPECT_THAT(warnings, testing::Contains("Clearing collection of cout multiplexors.").Times(1));
    std::erase_if(warnings, [](const std::string& text) { return !text.starts_with("WARN|"); });
    EXPECT_EQ(warnings,
              (texts_t{"WARN|Error: Failed to initialize stdout log.", "WARN|Standard output is not available.",
                       "WARN|Folder [" + (folder / L"shared\\a").string() +
                           "] belongs to another account, which can replace what is in it."}));
    EXPECT_EQ(FileText(folder / L"errors"),
              "Records that could not be written to the log: 3. " + exc::get_error_text(ERROR_DISK_FULL) + "\r\n");
}

TEST(LogSettings, BothSizeValuesOrBothDefaultsOnce) {
    using value_t = std::pair<DWORD, std::uint64_t>;  // of REG_NONE: is missing
    const struct {
        value_t size, count;
        std::uint64_t log_size = 15'728'640;
        std::uint32_t archive_count = 10;
    } cases[] = {
        {{REG_DWORD, 0}, {}},
        {{}, {REG_DWORD, 3}},
        {{REG_DWORD, 0}, {REG_DWORD, 5000}, 0, 1000},
        {{REG_QWORD, 5'000'000'000}, {REG_DWORD, 0}, 5'000'000'000, 0},
        {{REG_DWORD, 1000}, {REG_QWORD, 3}},
    };
    for (const auto& c : cases) {
        CTestRegistry registry;
        for (const auto& [name, value] : {std::pair{L"AgentMaxLogSize", c.size}, {L"AgentMaxLogCount", c.count}}) {
            const auto& [type, data] = value;
            if (type != REG_NONE) registry.Set(product_key, name, type, &data, type == REG_QWORD ? 8 : 4);
        }
        EXPECT_EQ(process_size_limits().archive_count, 10U);  // read once, the first time
        EXPECT_EQ(read_size_limits().log_size, c.log_size) << c.size.second << ' ' << c.count.second;
        EXPECT_EQ(read_size_limits().archive_count, c.archive_count) << c.size.second << ' ' << c.count.second;
    }
}

TEST(LogSettings, BaseDirectory) {
    CTestRegistry registry;
    registry.SetText(product_key, L"LogDirectory", L"");  // as if it were missing
    EXPECT_EQ(base_log_directory(), platform::expand_variables(L"%ProgramData%\\Tovak\\Backup\\"));
    registry.SetText(product_key, L"LogDirectory", L"D:\\logs \u00E4");
    EXPECT_EQ(log_folder_path(L"sub"), L"D:\\logs \u00E4\\sub");
    registry.SetText(product_key, L"LogDirectory", L"relative\\");
    EXPECT_EQ(log_folder_path(L"sub"), fs::current_path() / "relative" / "sub");
}

TEST(LogSettings, SwitchesAreWholeArguments) {
    const command_switches_t found = find_switches(L"-log \"a -log\" --log -Log \"-verbose\"");
    EXPECT_FALSE(found.echo);  // the first is the program's name
    EXPECT_TRUE(found.verbose);
}
