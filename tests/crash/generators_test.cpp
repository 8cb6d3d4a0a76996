#include <fstream>
#include <iterator>
#include <regex>

#include <gmock/gmock.h>

#include "common/crash/legacy_dump_gen.h"
#include "common/crash/minidump_gen.h"
#include "common/crash/recorder/value_filter.h"
#include "common/crash/stack_frames.h"
#include "common/exc/exceptions.h"
#include "tests/crash/dump_folder_fixture.h"

namespace {

using testing::HasSubstr;

class Generators : public DumpFolder {
protected:
    // What the generator leaves in the folder for this place in the program.
    [[gnu::noinline]] std::string dump_by(crash::win32::dump_gen_base_t&& generator) const {
        CONTEXT context;
        RtlCaptureContext(&context);
        EXCEPTION_RECORD record{};
        record.ExceptionCode = 0xC0000005;
        EXCEPTION_POINTERS pointers{&record, &context};
        generator.generate({record.ExceptionCode, GetCurrentThreadId(), &pointers}, (folder / "a_crash").wstring());
        std::ifstream file(boost::filesystem::directory_iterator(folder)->path().c_str(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    bool filter(const std::string& content) const {
        const platform::unique_file file(CreateFileW((folder / "cut").c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                                     CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        DWORD written = 0;
        WriteFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
        return crash::filter_values(file.get());
    }
};

TEST_F(Generators, LegacyReportListsModulesAndFrames) {
    const std::string report = dump_by(crash::win32::legacy_dump_gen_t());
    EXPECT_TRUE(report.starts_with(std::string(74, '/') + "\r\nLoaded modules:\r\n0x")) << report;
    const std::string module = "0x[0-9a-f]{8,16} - 0x[0-9a-f]{8,16} ";
    const std::string symbols =
        "(symbols loaded|no symbols are available|no matching symbolic information found "
        "\\(error code: 0x[0-9a-f]{8}\\))\r\n";
    EXPECT_TRUE(std::regex_search(
        report, std::regex(module + "crash_test\\.exe \\([^)]*\\\\crash_test\\.exe\\) 0\\.0\\.0\\.0, " + symbols)));
    EXPECT_TRUE(std::regex_search(report, std::regex(module +
                                                     "kernel32\\.dll \\(C:\\\\windows\\\\system32\\\\"
                                                     "kernel32\\.dll\\) [1-9]\\d*(\\.\\d+){3}, " +
                                                     symbols)));
    const std::size_t frames = report.find("\r\nStack frames:\r\n0x");
    ASSERT_NE(frames, std::string::npos) << report;
    EXPECT_TRUE(std::regex_search(
        report.substr(frames),
        std::regex("^\r\nStack frames:\r\n"
                   "(0x[0-9a-f]{8,16} crash_test\\.exe \\+ 0x[0-9a-f]+.*\r\n){2,}"
                   "0x[0-9a-f]{8,16} kernel32\\.dll \\+ 0x[0-9a-f]+ BaseThreadInitThunk \\+ 0x[0-9a-f]+\r\n")))
        << report;
}

TEST_F(Generators, WalkEndsOnADamagedStack) {
    CONTEXT context{};
    context.Rip = 0x10;
    context.Rsp = 0x20;
    EXPECT_THAT(crash::walk_stack(context), testing::ElementsAre(0x10u));
    try {
        crash::check_architecture(PROCESSOR_ARCHITECTURE_ARM64);
        FAIL();
    } catch (const exc::runtime_exc_t& failure) {
        EXPECT_STREQ(failure.what(), "Unexpected processor architecture: '12'.");
    }
}

TEST_F(Generators, CutOffDumpIsNotFiltered) {
    const std::string dump = dump_by(crash::win32::minidump_gen_t());
    ASSERT_TRUE(filter(dump));
    EXPECT_FALSE(filter("MDMP"));
    EXPECT_FALSE(filter(std::string(dump.size(), 'x')));
    // Wherever it is cut, nothing behind the end is read; without its last piece it may still be complete enough.
    for (std::size_t size = 0; size < dump.size(); size += dump.size() / 97 + 1) filter(dump.substr(0, size));
}

TEST_F(Generators, UnwritableFolderIsNamed) {
    boost::filesystem::remove_all(folder);
    try {
        dump_by(crash::win32::minidump_gen_t());
        FAIL();
    } catch (const exc::win_sys_exc_t& failure) {
        EXPECT_EQ(failure.error_code, static_cast<unsigned>(ERROR_PATH_NOT_FOUND));
        EXPECT_THAT(failure.what(), HasSubstr("\nCannot create a blank minidump file. File path: ["));
    }
}

}  // namespace
