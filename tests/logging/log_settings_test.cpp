#include "common/logging/log_settings.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/logging/faked_system.h"
#include "tests/support/test_registry.h"

#include <shlobj.h>

using namespace logging;

constexpr const wchar_t* product_key = L"SOFTWARE\\Tovak\\Tovak Central";

TEST(log_settings, both_size_values_or_both_defaults_once) {
    struct value_t {
        DWORD type = REG_NONE;  // is missing
        std::uint64_t data = 0;
    };
    const struct {
        value_t size, count;
        std::uint64_t log_size = 15'728'640;
        std::uint32_t archive_count = 10;
    } cases[] = {
        {{}, {}},
        {{REG_DWORD, 0}, {}},
        {{}, {REG_DWORD, 3}},
        {{REG_DWORD, 0}, {REG_DWORD, 5000}, 0, 1000},
        {{REG_QWORD, 5'000'000'000}, {REG_DWORD, 0}, 5'000'000'000, 0},
        {{REG_DWORD, 1000}, {REG_QWORD, 3}},
        {{REG_SZ, '1'}, {REG_DWORD, 3}},
    };
    for (const auto& c : cases) {
        test_support::CTestRegistry registry;
        for (const auto& [name, value] : {std::pair{L"AgentMaxLogSize", c.size}, {L"AgentMaxLogCount", c.count}})
            if (value.type) registry.Set(product_key, name, value.type, &value.data, value.type == REG_QWORD ? 8 : 4);
        EXPECT_EQ(process_size_limits().archive_count, 10U);  // read once, the first time
        EXPECT_EQ(read_size_limits().log_size, c.log_size) << c.size.data << ' ' << c.count.data;
        EXPECT_EQ(read_size_limits().archive_count, c.archive_count) << c.size.data << ' ' << c.count.data;
    }
}

TEST(log_settings, base_directory) {
    const log_test::system_guard_t guard;
    test_support::CTestRegistry registry;
    wchar_t* known = nullptr;
    ASSERT_EQ(SHGetKnownFolderPath(FOLDERID_ProgramData, 0, nullptr, &known), S_OK);
    const std::wstring expected = std::wstring(known) + L"\\Tovak\\Backup\\";
    CoTaskMemFree(known);
    EXPECT_EQ(base_log_directory(), expected);
    registry.SetText(product_key, L"LogDirectory", L"");
    EXPECT_EQ(base_log_directory(), expected);
    log_test::faked_system.folder_error = static_cast<HRESULT>(0x80070002);
    registry.SetText(product_key, L"LogDirectory", L"D:\\logs \u00E4");
    EXPECT_EQ(base_log_directory(), L"D:\\logs \u00E4");
    EXPECT_EQ(log_folder_path(L"sub"), L"D:\\logs \u00E4\\sub");
    registry.SetText(product_key, L"LogDirectory", L"relative\\");
    EXPECT_EQ(log_folder_path(L"sub"), std::filesystem::current_path() / "relative" / "sub");
}

TEST(command_switches, whole_arguments_alone) {
    const struct {
        const wchar_t* line;
        bool echo, verbose;
    } cases[] = {
        {L"\"C:\\a -log b\\-verbose\" --show-config", false, false},
        {L"-log", false, false},  // the program's name
        {L"o.exe --wizard -log", true, false},
        {L"o.exe \"-verbose\" x", false, true},
        {L"o.exe --log -logs -Verbose \"a -log\"", false, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(find_switches(c.line).echo, c.echo) << c.line;
        EXPECT_EQ(find_switches(c.line).verbose, c.verbose) << c.line;
    }
}
