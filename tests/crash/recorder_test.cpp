#include "common/crash/dump_folder.h"
#include "common/crash/out_of_proc_dump_gen.h"
#include "common/crash/recorder/ntdll.h"
#include "common/crash/recorder_process.h"
#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/module.h"
#include "tests/crash/dump_folder_fixture.h"
#include "tests/support/recording_sink.h"

namespace {

using testing::HasSubstr;
using testing::UnorderedElementsAre;

const std::string name_too_long(300, 'x');

std::string shown(std::uint32_t code) {
    return std::to_string(code) + ": " + std::string(crash::recorder_exit_text(code));
}

class Recorder : public DumpFolder {
protected:
    // %1: handle of this process with these rights, %2: its id, %3: thread id, %4: dump folder.
    std::uint32_t run(const std::string& arguments, DWORD rights = PROCESS_ALL_ACCESS) const {
        platform::unique_handle process;
        const HANDLE current = GetCurrentProcess();
        DuplicateHandle(current, current, current, process.put(), rights, TRUE, 0);
        const std::string line =
            exc::format_message(arguments, {std::to_string(reinterpret_cast<std::uintptr_t>(process.get())),
                                            std::to_string(GetCurrentProcessId()), std::to_string(GetCurrentThreadId()),
                                            encoding::wide_to_utf8(folder.wstring())});
        const crash::recorder_file_t file(std::filesystem::current_path().wstring());
        return crash::wait_for_recorder(crash::start_recorder(file.path(), encoding::utf8_to_wide(line)));
    }
};

TEST_F(Recorder, WrongCallsHaveTheirExitCodes) {
    create(L"file", 1);
    const char* const bad_count = "101: invalid count of arguments";
    const char* const bad_arguments = "102: invalid arguments";
    const std::pair<std::string, const char*> calls[] = {
        {"%1 %2 %3 0 0 \"%4\" b", bad_count},
        {"%1 %2 %3 0 0 \"%4\" b 10 more", bad_count},
        {"%1 %2 %3x 0 0 \"%4\" b 10", bad_arguments},
        {"%1 4 %3 0 0 \"%4\" b 10", bad_arguments},
        {"%1 %2 %3 18446744073709551616 0 \"%4\" b 10", bad_arguments},
        {"%1 %2 %3 0 4294967296 \"%4\" b 10", bad_arguments},
        {"%1 %2 %3 0 0 \"\" b 10", bad_arguments},
        {"%1 %2 %3 0 0 \"%4\" \"\" 10", bad_arguments},
        {"%1 %2 %3 0 0 \"%4\" \"..\\b\" 10", bad_arguments},
        {"%1 %2 %3 0 0 \"%4\" b 0", bad_arguments},
        {"%1 %2 %3 0 0 \"%4\\file\\below\" b 10", "103: cannot create dump folder"},
        {"%1 %2 %3 0 0 \"%4\" " + std::string(4096, 'x') + " 10", "105: invalid dump name"},
        {"%1 %2 %3 0 0 \"%4\\new folder\" " + name_too_long + " 10", "106: cannot create dump file"},
    };
    for (const auto& [arguments, outcome] : calls) EXPECT_EQ(shown(run(arguments)), outcome) << arguments;
    EXPECT_EQ(shown(run("%1 %2 %3 0 0 \"%4\" b 10", PROCESS_QUERY_LIMITED_INFORMATION)),
              "107: cannot write dump content");
    EXPECT_TRUE(std::filesystem::is_empty(folder / "new folder"));
    EXPECT_THAT(names(), UnorderedElementsAre(L"file", L"new folder"));
}

TEST_F(Recorder, NeedsNtdll) {
    recorder::ntdll_t functions;
    const auto find_in = [&](const wchar_t* module) { return shown(find_ntdll(LoadLibraryW(module), functions)); };
    EXPECT_EQ(find_in(L"missing.dll"), "108: NTDLL is not loaded");
    EXPECT_EQ(find_in(L"kernel32.dll"), "109: memset is not exported from NTDLL");
    EXPECT_EQ(find_in(L"ucrtbase.dll"), "110: _vsnwprintf is not exported from NTDLL");
    EXPECT_EQ(find_in(L"ntdll.dll"), "0: success");

    wchar_t text[5];
    EXPECT_FALSE(print(functions, text, 5, L"%ls", L"5five"));
    EXPECT_FALSE(print(functions, text, 5, L"%ls", L"sixsix"));
}

TEST_F(Recorder, FileIsReplacedAndRenamedByNobody) {
    const std::wstring name = L"TovakDumpRecorder";
    const std::wstring path = (folder / name).wstring();
    create(name, 1);  // left behind by a power failure
    {
        const crash::recorder_file_t file(folder.wstring(), 0);
        EXPECT_GT(std::filesystem::file_size(path), 4096u);
        EXPECT_FALSE(MoveFileW(path.c_str(), (path + L"2").c_str()));
        EXPECT_FALSE(DeleteFileW(path.c_str()));
        EXPECT_FALSE(platform::unique_file(
            CreateFileW(path.c_str(), GENERIC_WRITE, 7, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)));
        EXPECT_THAT([&] { crash::recorder_file_t(folder.wstring(), 50); },
                    Fails(HasSubstr("Failed to create dump recorder file: " + encoding::wide_to_utf8(path))));
        const platform::unique_module image(LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
        EXPECT_NE(FindResourceW(image.get(), MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(24)), nullptr) << "no manifest";
    }
    EXPECT_THAT(names(), testing::IsEmpty());
    EXPECT_THAT([&] { crash::recorder_file_t((folder / "missing").wstring()); },
                Fails(HasSubstr("Failed to create dump recorder file: ")));
}

TEST_F(Recorder, FailedStartLeavesNoFile) {
    const std::wstring path = (folder / L"TovakDumpRecorder").wstring();
    const auto expect_failure = [](DWORD code, const std::string& message, const std::function<void()>& action) {
        EXPECT_THAT(action, Fails(HasSubstr(exc::get_error_text(code) + "\n" + message)));
    };
    const auto make = [&] { crash::recorder_file_t(folder.wstring()); };

    WriteFile_hook::Fail(ERROR_DISK_FULL);
    expect_failure(ERROR_DISK_FULL, "Failed to write dump recorder code to " + encoding::wide_to_utf8(path), make);
    WriteFile_hook::replacement = nullptr;

    CreateFileW_hook::replacement = [](auto file, auto access, auto sharing, auto security, auto how, auto... rest) {
        if (how != OPEN_EXISTING) return CreateFileW_hook::System(file, access, sharing, security, how, rest...);
        SetLastError(ERROR_TOO_MANY_OPEN_FILES);
        return INVALID_HANDLE_VALUE;
    };
    expect_failure(ERROR_TOO_MANY_OPEN_FILES, "Failed to re-open dump recorder for deletion: ", make);
    CreateFileW_hook::replacement = nullptr;

    expect_failure(ERROR_FILE_NOT_FOUND,
                   "Failed to start dump generator process. File: ", [&] { crash::start_recorder(path, L""); });

    DuplicateHandle_hook::Fail(ERROR_ACCESS_DENIED);
    expect_failure(ERROR_ACCESS_DENIED,
                   "Cannot initialize out-of-process dump generator: failed to duplicate current process handle\n"
                   "--tr:Error code: 0x00000005\nFailed to create out-of-process dump generator",
                   [] { crash::win32::COutOfProcDumpGen generator(test_support::test_log, 1, L""); });
    DuplicateHandle_hook::replacement = nullptr;
    EXPECT_THAT(names(), testing::IsEmpty());
}

TEST_F(Recorder, OldDumpsGoWhetherTheProgramOrTheRecorderDeletesThem) {
    test_support::CRecordedLog log;
    const auto clean_up = [&](bool by_recorder, unsigned max) -> std::string {
        if (by_recorder) return shown(run("%1 %2 %3 0 0 \"%4\" " + name_too_long + " " + std::to_string(max)));
        log.Clear();
        return test_support::FailureOf([&] { crash::cleanup_dumps(test_support::test_log, folder.wstring(), max); });
    };
    const auto path_of = [&](const char* name) { return encoding::wide_to_utf8((folder / name).wstring()); };
    const std::pair<const wchar_t*, int> files[] = {
        {L"a_crash_1.mdmp", 9}, {L"A_CRASH_2-EXCEPTIONS.LOG", 8}, {L"a_crash_3.MDMP", 7}, {L"a_crash_B.mdmp", 6},
        {L"a_crash_a.mdmp", 6}, {L"a_crash_4.mdmp.txt", 10},      {L"a.mdmp", 10},
    };
    for (const bool by_recorder : {false, true}) {
        for (const auto& [name, age] : files) create(name, age);
        const platform::unique_file held = hold(L"a_crash_1.mdmp");
        platform::unique_file read = hold(L"a_crash_3.MDMP", FILE_SHARE_DELETE);
        EXPECT_EQ(clean_up(by_recorder, 3), by_recorder ? "106: cannot create dump file" : "ok");
        read.reset();
        EXPECT_THAT(names(),
                    UnorderedElementsAre(L"a_crash_1.mdmp", L"a_crash_B.mdmp", L"a_crash_4.mdmp.txt", L"a.mdmp"));
        if (!by_recorder) {
            EXPECT_THAT(log.lines(), testing::ElementsAre("WARN|" + exc::get_error_text(ERROR_SHARING_VIOLATION),
                                                          "WARN|Old dump cannot be removed. Dump path: [" +
                                                              path_of("a_crash_1.mdmp") + "].",
                                                          "WARN|--tr:Error code: 0x00000020",
                                                          "Dump [" + path_of("A_CRASH_2-EXCEPTIONS.LOG") + "] deleted.",
                                                          "Dump [" + path_of("a_crash_3.MDMP") + "] deleted.",
                                                          "Dump [" + path_of("a_crash_a.mdmp") + "] deleted."));
        }
        EXPECT_EQ(clean_up(by_recorder, 1), by_recorder ? "104: cannot delete old dumps"
                                                        : "Cannot cleanup out of date dumps. There are [1] dumps "
                                                          "stored. Maximum allowed dumps number: [1].");
        EXPECT_THAT(names(), UnorderedElementsAre(L"a_crash_1.mdmp", L"a_crash_4.mdmp.txt", L"a.mdmp"));
    }
}

TEST_F(Recorder, IsEndedWhenItTakesTooLong) {
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    ASSERT_TRUE(CreateProcessW(platform::program_path().c_str(), nullptr, nullptr, nullptr, FALSE, CREATE_SUSPENDED,
                               nullptr, nullptr, &start, &process));
    const platform::unique_handle thread(process.hThread), hanging(process.hProcess);
    EXPECT_THAT([&] { crash::wait_for_recorder(hanging, 1); },
                Fails("Timed out waiting for dump generator process to finish"));
    EXPECT_EQ(WaitForSingleObject(hanging.get(), 10'000), WAIT_OBJECT_0);
    TerminateProcess(hanging.get(), 0);
}

}  // namespace
