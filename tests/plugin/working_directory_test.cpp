#include "common/plugin/working_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/exc/raise.h"
#include "common/platform/module.h"
#include "common/platform/path.h"
#include "common/text/convert.h"
#include "tests/support/recording_sink.h"
#include "tests/support/test_registry.h"

namespace {

using testing::ElementsAre;

class WorkingDirectory : public testing::Test {
protected:
    void ExpectModuleDirectory(const std::vector<std::string>& reason) {
        log_.Clear();
        EXPECT_EQ(plugin::get_current_directory(), platform::parent_of(platform::program_path()));
        std::vector<std::string> expected = reason;
        expected.push_back("Getting current directory by module path [" + text::wide_to_utf8(platform::program_path()) +
                           "]");
        EXPECT_EQ(log_.lines(), expected);
    }

    test_support::CTestRegistry registry_;
    test_support::CRecordedLog log_;
};

TEST_F(WorkingDirectory, IsTheTargetLinkPathOfTheRegistry) {
    registry_.SetText(L"SOFTWARE\\Tovak\\Tovak RMAN Plugin", L"LinkTargetPath", L"D:\\links \u4e2d");
    EXPECT_EQ(plugin::get_current_directory(), L"D:\\links \u4e2d");
    EXPECT_THAT(log_.lines(), ElementsAre("Target link path: D:\\links \u4e2d"));
}

TEST_F(WorkingDirectory, FallsBackToTheProgramsFolder) {
    const std::string not_found = exc::get_error_text(ERROR_FILE_NOT_FOUND);
    ExpectModuleDirectory({"Cannot find target link path in the registry: " + not_found,
                           "Cannot open registry key [SOFTWARE\\Tovak\\Tovak RMAN Plugin].",
                           "--tr:Error code: 0x00000002"});
    const std::string no_text =
        "Cannot find target link path in the registry: The registry value is not a text or is empty.";
    const DWORD number = 1;
    registry_.Set(L"SOFTWARE\\Tovak\\Tovak RMAN Plugin", L"LinkTargetPath", REG_DWORD, &number, sizeof number);
    ExpectModuleDirectory({no_text});
    registry_.SetText(L"SOFTWARE\\Tovak\\Tovak RMAN Plugin", L"LinkTargetPath", L"");
    ExpectModuleDirectory({no_text});
}

}  // namespace
