#include <functional>

#include <gmock/gmock.h>

#include "common/crash/out_of_proc_dump_gen.h"
#include "common/crash/recorder_exit_text.h"
#include "common/crash/recorder_file.h"
#include "common/crash/recorder_process.h"
#include "common/exc/exceptions.h"
#include "tests/crash/dump_folder_fixture.h"

namespace {

using testing::UnorderedElementsAre;

class Recorder : public DumpFolder {
protected:
    Recorder() {
        const HANDLE current = GetCurrentProcess();
        DuplicateHandle(current, current, current, process.put(), 0, TRUE, DUPLICATE_SAME_ACCESS);
    }

    std::uint32_t run(const std::wstring& arguments) const {
        const crash::recorder_file_t file(bin.wstring());
        return crash::wait_for_recorder(crash::start_recorder(file.path(), arguments, process.get()));
    }

    // "{p}" process handle, "{i}" process id, "{t}" thread id, "{f}" dump folder.
    std::uint32_t run_with(std::wstring arguments) const {
        const auto put = [&arguments](const std::wstring& mark, const std::wstring& value) {
            const std::size_t place = arguments.find(mark);
            if (place != std::wstring::npos) arguments.replace(place, mark.size(), value);
        };
        put(L"{p}", std::to_wstring(reinterpret_cast<std::uintptr_t>(process.get())));
        put(L"{i}", std::to_wstring(GetCurrentProcessId()));
        put(L"{t}", std::to_wstring(GetCurrentThreadId()));
        put(L"{f}", folder.wstring());
        return run(arguments);
    }

    boost::filesystem::path bin = boost::filesystem::current_path();
    platform::unique_handle process;
};

TEST_F(Recorder, WrongCallsHaveTheirExitCodes) {
    create(L"file", 1);
    const std::wstring file_name_too_long(300, L'x');
    const std::wstring path_too_long(4096, L'x');
    const std::pair<std::wstring, unsigned> calls[] = {
        {L"", 101},
        {L"{p} {i} {t} 0 \"{f}\" b", 101},
        {L"{p} {i} {t} 0 \"{f}\" b 10 more", 101},
        {L"{p}x {i} {t} 0 \"{f}\" b 10", 102},
        {L"-1 {i} {t} 0 \"{f}\" b 10", 102},
        {L"4095 {i} {t} 0 \"{f}\" b 10", 102},
        {L"{p} 4 {t} 0 \"{f}\" b 10", 102},
        {L"{p} 4294967296 {t} 0 \"{f}\" b 10", 102},
        {L"{p} {i} {t} 18446744073709551616 \"{f}\" b 10", 102},
        {L"{p} {i} {t} 0 \"\" b 10", 102},
        {L"{p} {i} {t} 0 \"{f}\" \"\" 10", 102},
        {L"{p} {i} {t} 0 \"{f}\" \"..\\b\" 10", 102},
        {L"{p} {i} {t} 0 \"{f}\" b 0", 102},
        {L"{p} {i} {t} 0 \"{f}\\file\\below\" b 10", 103},
        {L"{p} {i} {t} 0 \"{f}\" " + path_too_long + L" 10", 105},
        {L"{p} {i} {t} 0 \"{f}\" " + file_name_too_long + L" 10", 106},
    };
    for (const auto& [arguments, code] : calls) {
        EXPECT_EQ(run_with(arguments), code) << std::string(arguments.begin(), arguments.end());
    }
    EXPECT_THAT(names(), UnorderedElementsAre(L"file"));
}

TEST_F(Recorder, CreatesTheFolderAndNamesTheDump) {
    ASSERT_EQ(run_with(L"{p} {i} {t} 0 \"{f}\\a b\\c\" My_crash 1"), 0u);
    const boost::filesystem::path dump = boost::filesystem::directory_iterator(folder / "a b" / "c")->path();
    EXPECT_THAT(dump.filename().string(), testing::MatchesRegex("My_crash_\\d+_\\d+_\\d+.mdmp"));
    EXPECT_TRUE(dump.filename().string().starts_with("My_crash_" + std::to_string(GetCurrentProcessId()) + "_" +
                                                     std::to_string(GetCurrentThreadId()) + "_"));
}

TEST_F(Recorder, DeletesTheOldestDumpsThatItCan) {
    create(L"a_crash_1.mdmp", 5);
    create(L"a_crash_2-exceptions.log", 4);
    create(L"a_crash_3.mdmp", 3);
    create(L"a_crash_5.mdmp", 2);
    create(L"a_crash_4.mdmp", 2);
    create(L"a.mdmp", 9);
    const platform::unique_file held = hold(L"a_crash_1.mdmp");
    ASSERT_EQ(run_with(L"{p} {i} {t} 0 \"{f}\" b_crash 3"), 0u);
    EXPECT_THAT(names(), UnorderedElementsAre(L"a.mdmp", L"a_crash_1.mdmp", L"a_crash_5.mdmp",
                                              testing::StartsWith(L"b_crash_")));
    EXPECT_EQ(run_with(L"{p} {i} {t} 0 \"{f}\" b_crash 1"), 104u);
}

TEST_F(Recorder, FailureIsRaisedWithItsText) {
    const auto failure_of = [](const boost::filesystem::path& path, unsigned most_dumps) -> std::string {
        try {
            const crash::failure_t failure{1, GetCurrentThreadId(), nullptr};
            crash::win32::COutOfProcDumpGen(most_dumps).generate(failure, path.wstring());
        } catch (const exc::exc_base_t& raised) {
            return raised.what();
        }
        return "nothing was raised";
    };
    EXPECT_EQ(failure_of(folder / std::string(300, 'x'), 10),
              "Dump generator process failed with 106: cannot create dump file");
    create(L"a_crash_1.mdmp", 1);
    const platform::unique_file held = hold(L"a_crash_1.mdmp");
    EXPECT_EQ(failure_of(folder / "b_crash", 1), "Dump generator process failed with 104: cannot delete old dumps");
    EXPECT_THAT(failure_of(folder / "missing" / "b", 10), testing::HasSubstr("Failed to create dump recorder file: "));
    DWORD before = 0, after = 0;
    GetProcessHandleCount(GetCurrentProcess(), &before);
    failure_of(folder / "b_crash", 1);
    GetProcessHandleCount(GetCurrentProcess(), &after);
    EXPECT_EQ(after, before);
    EXPECT_THAT(names(), UnorderedElementsAre(L"a_crash_1.mdmp"));
}

TEST(RecorderExitText, TellsEveryCode) {
    const std::pair<std::uint32_t, std::string_view> texts[] = {
        {0, "success"},
        {1, "unspecified failure"},
        {101, "invalid count of arguments"},
        {102, "invalid arguments"},
        {103, "cannot create dump folder"},
        {104, "cannot delete old dumps"},
        {105, "invalid dump name"},
        {106, "cannot create dump file"},
        {107, "cannot write dump content"},
        {108, "NTDLL is not loaded"},
        {109, "memset is not exported from NTDLL"},
        {110, "_vsnwprintf is not exported from NTDLL"},
        {0xC0000005, "unexpected exit code"},
    };
    for (const auto& [code, text] : texts) EXPECT_EQ(crash::recorder_exit_text(code), text);
}

}  // namespace
