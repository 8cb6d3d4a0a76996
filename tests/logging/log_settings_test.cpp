#include "common/logging/log_settings.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "common/platform/path.h"
#include "tests/support/test_registry.h"

using namespace logging;

constexpr const wchar_t* product_key = L"SOFTWARE\\Tovak\\Tovak Central";

TEST(LogSettings, BothSizeValuesOrBothDefaultsOnce) {
    using value_t = std::pair<DWORD, std::uint64_t>;  // of REG_NONE: is missing
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
    test_support::CTestRegistry registry;
    registry.SetText(product_key, L"LogDirectory", L"");  // as if it were missing
    EXPECT_EQ(base_log_directory(), platform::expand_variables(L"%ProgramData%\\Tovak\\Backup\\"));
    registry.SetText(product_key, L"LogDirectory", L"D:\\logs \u00E4");
    EXPECT_EQ(log_folder_path(L"sub"), L"D:\\logs \u00E4\\sub");
    registry.SetText(product_key, L"LogDirectory", L"relative\\");
    EXPECT_EQ(log_folder_path(L"sub"), std::filesystem::current_path() / "relative" / "sub");
}

TEST(LogSettings, SwitchesAreWholeArguments) {
    const std::pair<const wchar_t*, std::pair<bool, bool>> cases[] = {
        {L"\"C:\\a -log b\\-verbose\" --show-config", {false, false}},
        {L"-log", {false, false}},  // the program's name
        {L"o.exe --wizard -log", {true, false}},
        {L"o.exe \"-verbose\" x", {false, true}},
        {L"o.exe --log -logs -Verbose \"a -log\"", {false, false}},
    };
    for (const auto& [line, expected] : cases) {
        const auto [echo, verbose] = find_switches(line);
        EXPECT_EQ(std::pair(echo, verbose), expected) << line;
    }
}
