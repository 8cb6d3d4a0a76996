#include "common/crash/dump_folder.h"

#include "common/platform/account.h"
#include "common/text/convert.h"
#include "tests/crash/dump_folder_fixture.h"
#include "tests/support/recording_sink.h"

#include <aclapi.h>

namespace {

std::string shown(const boost::filesystem::path& path) { return text::wide_to_utf8(path.wstring()); }

struct account_t {
    explicit account_t(WELL_KNOWN_SID_TYPE type) {
        DWORD size = sizeof bytes;
        CreateWellKnownSid(type, nullptr, bytes, &size);
    }
    unsigned char bytes[SECURITY_MAX_SID_SIZE];
};

// What the entries of the folder's access list allow this account.
DWORD rights(const std::wstring& path, WELL_KNOWN_SID_TYPE account) {
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    EXPECT_EQ(GetNamedSecurityInfoW(path.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list,
                                    nullptr, &descriptor),
              0u);
    DWORD mask = 0;
    for (DWORD i = 0; i < list->AceCount; ++i) {
        void* entry = nullptr;
        GetAce(list, i, &entry);
        auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
        if (EqualSid(&allowed->SidStart, account_t(account).bytes)) mask |= allowed->Mask;
    }
    LocalFree(descriptor);
    return mask;
}

TEST_F(DumpFolder, OthersHaveNoRights) {
    const std::wstring dumps = (folder / "a" / "Dumps").wstring();
    const platform::unique_file opened = crash::open_dump_folder(dumps);
    EXPECT_TRUE(opened);
    EXPECT_TRUE(crash::open_dump_folder(dumps));
    EXPECT_FALSE(MoveFileW(dumps.c_str(), (dumps + L"_").c_str()));
    // Wine stores no more of an access list than what its own folders can express.
    EXPECT_NE(rights(folder.wstring(), WinWorldSid), 0u);
    EXPECT_EQ(rights(dumps, WinWorldSid), 0u);
    EXPECT_EQ(rights(dumps, WinBuiltinUsersSid), 0u);
    EXPECT_EQ(rights(dumps, WinLocalSystemSid), DWORD{FILE_ALL_ACCESS});

    EXPECT_TRUE(platform::is_trusted_owner(account_t(WinLocalSystemSid).bytes));
    EXPECT_TRUE(platform::is_trusted_owner(account_t(WinBuiltinAdministratorsSid).bytes));
    EXPECT_FALSE(platform::is_trusted_owner(account_t(WinWorldSid).bytes));
    EXPECT_FALSE(platform::is_trusted_owner(account_t(WinBuiltinUsersSid).bytes));
}

TEST_F(DumpFolder, CleanUpIsLogged) {
    create(L"a_crash_old.mdmp", 3);
    create(L"a_crash_middle.mdmp", 2);
    create(L"a_crash_new.mdmp", 1);
    const platform::unique_file held = hold(L"a_crash_old.mdmp");
    test_support::CRecordedLog log;

    crash::cleanup_dumps(folder.wstring(), 4);
    EXPECT_THAT(log.lines(), testing::IsEmpty());
    crash::cleanup_dumps(folder.wstring(), 3);

    EXPECT_THAT(log.lines(), testing::ElementsAre("WARN|Sharing violation.",
                                                  "WARN|Old dump cannot be removed. Dump path: [" +
                                                      shown(folder / "a_crash_old.mdmp") + "].",
                                                  "WARN|--tr:Error code: 0x00000020",
                                                  "Dump [" + shown(folder / "a_crash_middle.mdmp") + "] deleted."));
    const platform::unique_file also_held = hold(L"a_crash_new.mdmp");
    EXPECT_EQ(message_of([&] { crash::cleanup_dumps(folder.wstring(), 1); }),
              "Cannot cleanup out of date dumps. There are [2] dumps stored. Maximum allowed dumps number: [1].");
}

TEST_F(DumpFolder, FirstFreeIdentifierIsReserved) {
    const std::wstring path = (folder / "Ormacon_crash").wstring();
    const std::wstring begin = L"Ormacon_crash_" + std::to_wstring(GetCurrentProcessId()) + L"_";
    EXPECT_EQ(crash::reserve_dump_identifier(path), (folder / (begin + L"1")).wstring());
    create(begin + L"1.mdmp", 1);
    create(begin + L"2-exceptions.log", 1);
    create(begin + L"12.mdmp", 1);
    EXPECT_EQ(crash::reserve_dump_identifier(path), (folder / (begin + L"3")).wstring());

    std::set<unsigned> taken;
    for (unsigned i = 1; i < 10'000; ++i) taken.insert(i);
    EXPECT_EQ(crash::first_free_identifier(taken), 10'000u);
    taken.insert(10'000);
    EXPECT_EQ(message_of([&] { crash::first_free_identifier(taken); }), "All dump identifiers are reserved.");
}

}  // namespace
