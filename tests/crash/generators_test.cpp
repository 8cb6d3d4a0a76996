#include <regex>

#include "common/crash/debug_help.h"
#include "common/crash/legacy_dump_gen.h"
#include "common/crash/minidump_gen.h"
#include "common/crash/shared/minidump_file.h"
#include "common/crash/shared/value_filter.h"
#include "common/exc/raise.h"
#include "common/platform/module.h"
#include "common/platform/path.h"
#include "tests/crash/dump_folder_fixture.h"
#include "tests/support/recording_sink.h"

std::wstring take_symbol_search_path();

namespace {

using test_support::test_log;
using testing::HasSubstr;

class Generators : public DumpFolder {
protected:
    // What the generator leaves in the folder for this place in the program.
    [[gnu::noinline]] std::string dump_by(crash::win32::dump_gen_base_t&& generator) const {
        CONTEXT context;
        RtlCaptureContext(&context);
        context.R12 = secret;
        EXCEPTION_RECORD record{};
        record.ExceptionCode = 0xC0000005;
        EXCEPTION_POINTERS pointers{&record, &context};
        generator.generate({record.ExceptionCode, GetCurrentThreadId(), &pointers}, (folder / "a_crash").wstring());
        return test_support::FileText(std::filesystem::directory_iterator(folder)->path());
    }

    bool filter(const std::string& content) const {
        test_support::WriteFileText(folder / "cut", content);
        const platform::unique_file file(CreateFileW((folder / "cut").c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                                     OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        return crash::filter_values(file.get());
    }

    // No constant of the program, whose code is in a dump, and no address.
    const std::uint64_t secret = ~GetTickCount64();
};

TEST_F(Generators, LegacyReportListsModulesAndFrames) {
    const auto begin = reinterpret_cast<std::uint64_t>(GetModuleHandleW(nullptr));
    const auto* const header = reinterpret_cast<IMAGE_DOS_HEADER*>(begin);
    const auto* const headers = reinterpret_cast<IMAGE_NT_HEADERS*>(begin + static_cast<unsigned>(header->e_lfanew));
    char line[64];
    std::snprintf(line, sizeof line, "\r\n0x%08llx - 0x%08llx crash_test.exe (", begin,
                  begin + headers->OptionalHeader.SizeOfImage);
    const std::string report = dump_by(crash::win32::legacy_dump_gen_t(test_log));
    EXPECT_THAT(report, HasSubstr(line));
    const std::string address = "\r\n0x[0-9a-f]{8,16} ";
    const std::string module = address + "- " + address.substr(2);
    const std::string symbols =
        ", (symbols loaded|no symbols are available|no matching symbolic information found "
        "\\(error code: 0x[0-9a-f]{8}\\))\r\n";
    for (const std::string& part :
         {"^/{74}\r\nLoaded modules:" + module,
          module + "crash_test\\.exe \\([^\r\n]*\\\\crash_test\\.exe\\) 0\\.0\\.0\\.0" + symbols,
          module + "kernel32\\.dll \\([^\r\n]*\\\\kernel32\\.dll\\) [1-9]\\d*(\\.\\d+){3}" + symbols,
          "\r\nStack frames:(" + address + "crash_test\\.exe \\+ 0x[0-9a-f]+.*){2,}" + address +
              "\\w+\\.dll \\+ 0x[0-9a-f]+ \\w+ \\+ 0x[0-9a-f]+\r\n"}) {
        EXPECT_TRUE(std::regex_search(report, std::regex(part, std::regex::icase))) << part << " in\n" << report;
    }
}

TEST_F(Generators, FailuresOfTheDebugHelpLibraryAreReported) {
    const std::tuple<HMODULE, DWORD, const char*> libraries[] = {
        {nullptr, ERROR_MOD_NOT_FOUND, "Cannot load dbghelp.dll library."},
        {GetModuleHandleW(L"kernel32.dll"), ERROR_PROC_NOT_FOUND,
         "MiniDumpWriteDump function is not exported from the dbghelp dynamic library."},
        {GetModuleHandleW(nullptr), ERROR_READ_FAULT, "MiniDumpWriteDump() function call has failed."},
    };
    for (const auto& [library, code, message] : libraries) {
        LoadLibraryExW_hook::Fail(ERROR_MOD_NOT_FOUND, library);
        const auto generate = [&] { dump_by(crash::win32::minidump_gen_t(test_log)); };
        EXPECT_THAT(generate, Fails(testing::StartsWith(exc::get_error_text(code) + "\n" + message)));
        EXPECT_THAT(names(), testing::IsEmpty());
    }
    SetEnvironmentVariableW(L"_NT_SYMBOL_PATH", L"C:\\mine");
    SetEnvironmentVariableW(L"_NT_ALT_SYMBOL_PATH", L"C:\\other");
    EXPECT_THAT(dump_by(crash::win32::legacy_dump_gen_t(test_log)),
                HasSubstr(", no matching symbolic information found (error code: 0x"));
    LoadLibraryExW_hook::replacement = nullptr;
    EXPECT_EQ(take_symbol_search_path(), platform::expand_variables(L"C:\\mine;C:\\other;%SystemRoot%\\Symbols"));
}

TEST_F(Generators, WalkEndsOnADamagedStack) {
    CONTEXT context{};
    context.Rip = 0x10;
    context.Rsp = 0x20;
    std::vector<std::uint64_t> frames;
    crash::win32::walk_stack(context, [&](std::uint64_t address) { frames.push_back(address); });
    EXPECT_THAT(frames, testing::ElementsAre(0x10u));
    EXPECT_THAT([] { crash::win32::check_architecture(PROCESSOR_ARCHITECTURE_ARM64); },
                Fails("Unexpected processor architecture: '12'."));
}

TEST_F(Generators, FolderThatIsMissingIsReported) {
    folder /= "missing";
    EXPECT_THAT([&] { dump_by(crash::win32::minidump_gen_t(test_log)); },
                Fails(HasSubstr("Cannot create a blank minidump file. File path: [")));
    EXPECT_THAT([&] { dump_by(crash::win32::legacy_dump_gen_t(test_log)); },
                Fails(HasSubstr("Cannot create a legacy dump file. File path: [")));
    folder = folder.parent_path();
}

// A writer that asks which threads are wanted before it stops them, and then writes what no filter can read.
BOOL WINAPI write_secret(HANDLE, DWORD, HANDLE file, MINIDUMP_TYPE, PMINIDUMP_EXCEPTION_INFORMATION,
                         PMINIDUMP_USER_STREAM_INFORMATION, PMINIDUMP_CALLBACK_INFORMATION selection) {
    for (const DWORD thread : {7u, 8u}) {
        MINIDUMP_CALLBACK_INPUT input{};
        input.CallbackType = IncludeThreadCallback;
        input.IncludeThread.ThreadId = thread;
        MINIDUMP_CALLBACK_OUTPUT output{};
        EXPECT_EQ(selection->CallbackRoutine(selection->CallbackParam, &input, &output), thread != 7);
    }
    DWORD written = 0;
    return WriteFile(file, "secret", 6, &written, nullptr);
}

TEST_F(Generators, UnfilteredMinidumpGoesWhenItIsClosed) {
    platform::unique_file file(crash::create_minidump((folder / "a.mdmp").c_str()));
    ASSERT_TRUE(file);
    EXPECT_FALSE(crash::write_minidump(&write_secret, file.get(), {nullptr, 0, nullptr, 7}));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_DATA));
    file.reset();
    EXPECT_THAT(names(), testing::IsEmpty());
    SetFileInformationByHandle_hook::Fail(ERROR_NOT_SUPPORTED);
    EXPECT_EQ(crash::create_minidump((folder / "a.mdmp").c_str()), INVALID_HANDLE_VALUE);
    SetFileInformationByHandle_hook::replacement = nullptr;
    EXPECT_THAT(names(), testing::IsEmpty());
}

TEST_F(Generators, RegistersAreFilteredAndACutOffDumpIsRefused) {
    const std::string dump = dump_by(crash::win32::minidump_gen_t(test_log));
    EXPECT_EQ(dump.find({reinterpret_cast<const char*>(&secret), sizeof secret}), std::string::npos);
    ASSERT_TRUE(filter(dump));
    EXPECT_FALSE(filter("MDMP"));
    EXPECT_FALSE(filter(std::string(dump.size(), 'x')));
    // Wherever it is cut, nothing behind the end is read; without its last piece it may still be complete enough.
    for (std::size_t size = 0; size < dump.size(); size += dump.size() / 97 + 1) filter(dump.substr(0, size));
}

TEST_F(Generators, PartsOfWordsAtTheEndsOfAStackAreCleared) {
    struct dump_t {
        MINIDUMP_HEADER header{0x504d444d, 0, 2, sizeof header, 0, {}, 0};
        MINIDUMP_DIRECTORY streams[2]{{ModuleListStream, {0, offsetof(dump_t, module_count)}},
                                      {ThreadListStream, {0, offsetof(dump_t, thread_count)}}};
        ULONG32 module_count = 1;
        MINIDUMP_MODULE module{};
        ULONG32 thread_count = 1;
        MINIDUMP_THREAD thread{0, 0, 0, 0, 0, {0x1003, {23, offsetof(dump_t, stack)}}, {}};
        char stack[32] = "5 + 8 + 8 + 2 bytes are cleared";
    } dump;
    ASSERT_TRUE(filter({reinterpret_cast<const char*>(&dump), sizeof dump}));
    EXPECT_EQ(test_support::FileText(folder / "cut").substr(offsetof(dump_t, stack), 25), std::string(23, '\0') + " c");
}

TEST_F(Generators, OtherLibrariesOfTheSameNameAreNotTaken) {
    const std::string text = exc::get_error_text(12007);
    ASSERT_THAT(text, Not(HasSubstr("12007"))) << "unknown to the system";
    create(L"wininet.dll", 0);
    create(L"dbghelp.dll", 0);
    SetDllDirectoryW(folder.c_str());
    EXPECT_EQ(exc::get_error_text(12007), text);
    EXPECT_NE(platform::find_function<FARPROC>(crash::load_debug_help().get(), "MiniDumpWriteDump"), nullptr);
    SetDllDirectoryW(nullptr);
}

}  // namespace
