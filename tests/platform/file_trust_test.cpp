#include "common/platform/file_trust.h"

#include "common/platform/path.h"
#include "tests/logging/log_fixture.h"

using namespace log_test;
using test_support::FailureOf;

namespace {

class FileTrust : public LogTest {
protected:
    // Gets what is opened, and may change the path.
    static void when_opened(const std::function<void(std::wstring& path, DWORD flags)>& action) {
        CreateFileW_hook::replacement = [=](std::wstring path, auto access, auto sharing, auto security, auto how,
                                            DWORD flags, auto pattern) {
            action(path, flags);
            return CreateFileW_hook::System(path.c_str(), access, sharing, security, how, flags, pattern);
        };
    }

    static void make_reparse_point(DWORD tag, const std::wstring& name) {
        GetFileInformationByHandleEx_hook::replacement = [=](HANDLE file, auto kind, void* info, auto size) {
            const BOOL done = GetFileInformationByHandleEx_hook::System(file, kind, info, size);
            if (kind == FileAttributeTagInfo && name_of(file) == name)
                *static_cast<FILE_ATTRIBUTE_TAG_INFO*>(info) = {FILE_ATTRIBUTE_REPARSE_POINT, tag};
            return done;
        };
    }
};

}  // namespace

// Deduplicated files, for example, are reparse points, and no links.
TEST_F(FileTrust, KindsOfReparsePoints) {
    constexpr const char *trusted = nullptr, *link = "it is a link";
    const std::pair<DWORD, const char*> cases[] = {
        {IO_REPARSE_TAG_SYMLINK, link}, {IO_REPARSE_TAG_MOUNT_POINT, link}, {IO_REPARSE_TAG_DEDUP, trusted}};
    const std::wstring other = folder / L"B.log";
    for (const auto& name : {path, other}) WriteFileText(name, "old\r\n");
    const auto outcome = [&] { return FailureOf([&] { platform::open_log_file(path); }); };
    DWORD last_flags = 0;
    when_opened([&](std::wstring&, DWORD flags) { last_flags = flags; });
    for (const auto& [tag, reason] : cases) {
        make_reparse_point(tag, L"A.log");
        EXPECT_EQ(outcome(), reason ? refusal("A.log", reason) : "ok");
        EXPECT_EQ((last_flags & FILE_FLAG_OPEN_REPARSE_POINT) == 0, reason == trusted);
    }
    when_opened([&](std::wstring& opened, DWORD flags) {  // replaced between the look at the file and its use
        if ((flags & FILE_FLAG_OPEN_REPARSE_POINT) == 0 && opened.ends_with(L"A.log")) opened = other;
    });
    EXPECT_EQ(outcome(), refusal("A.log", "its content cannot be opened"));
}

TEST_F(FileTrust, WayThatLeadsElsewhere) {
    for (const wchar_t* name : {L"Sub\\Logs", L"Other\\Logs"}) fs::create_directories(folder / name);
    const std::wstring logs = folder / L"Sub\\Logs";
    const std::string elsewhere =
        "Folder [" + fs::path(platform::system_path(logs)).string() + "] is not used: it leads elsewhere.";
    const auto failure = [&] { return FailureOf([&] { platform::require_trusted_folder(logs); }); };
    EXPECT_EQ(failure(), "ok");
    std::wstring changed = L"Sub\\Logs";  // what the end of a path becomes meanwhile
    const auto change = [&](std::wstring& opened, DWORD) {
        if (opened.ends_with(changed)) opened.replace(opened.rfind(L"Sub"), 3, L"Other");
    };
    when_opened(change);
    EXPECT_EQ(failure(), elsewhere);
    changed = L"Sub\\Logs\\A.log";
    EXPECT_THAT(FailureOf([&] { platform::open_log_file(logs + L"\\A.log"); }),
                testing::EndsWith("it is in another folder."));
    // A link that is there all the time, of another account and of one that is trusted.
    changed = L"Sub\\Logs";
    make_reparse_point(IO_REPARSE_TAG_MOUNT_POINT, L"Logs");
    make_foreign([](const std::wstring& name) { return name == L"Logs"; });
    EXPECT_EQ(failure(), elsewhere);
    GetKernelObjectSecurity_hook::replacement = nullptr;
    when_opened([&](std::wstring& opened, DWORD flags) {
        if ((flags & FILE_FLAG_OPEN_REPARSE_POINT) == 0) change(opened, flags);
    });
    EXPECT_EQ(failure(), "ok");
}
