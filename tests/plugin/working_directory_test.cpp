#include "common/plugin/working_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/exc/raise.h"
#include "common/platform/module.h"
#include "common/platform/path.h"
#include "common/text/convert.h"
#include "tests/support/recording_sink.h"
#include "tests/support/test_registry.h"

TEST(WorkingDirectory, IsTheTargetLinkPathOfTheRegistryOrElseTheProgramsFolder) {
    test_support::CTestRegistry registry;
    const auto expect = [](const std::wstring& directory, const std::vector<std::string>& lines) {
        const test_support::CRecordedLog log;
        EXPECT_EQ(plugin::get_current_directory(), directory);
        EXPECT_EQ(log.lines(), lines);
    };
    const std::wstring program = platform::program_path(), folder = platform::parent_of(program);
    const std::string no_path = "Cannot find target link path in the registry: ";
    const std::string no_text = no_path + "The registry value is not a text or is empty.";
    const std::string by_module = "Getting current directory by module path [" + text::wide_to_utf8(program) + "]";
    expect(folder, {no_path + exc::get_error_text(ERROR_FILE_NOT_FOUND),
                    "Cannot open registry key [SOFTWARE\\Tovak\\Tovak RMAN Plugin].", "--tr:Error code: 0x00000002",
                    by_module});
    const DWORD number = 1;
    registry.Set(plugin::plugin_registry_key, L"LinkTargetPath", REG_DWORD, &number, sizeof number);
    expect(folder, {no_text, by_module});
    registry.SetText(plugin::plugin_registry_key, L"LinkTargetPath", L"");
    expect(folder, {no_text, by_module});
    registry.SetText(plugin::plugin_registry_key, L"LinkTargetPath", L"D:\\links \u4e2d");
    expect(L"D:\\links \u4e2d", {"Target link path: D:\\links \u4e2d"});
}
