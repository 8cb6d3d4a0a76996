#include "common/crash/dump_folder.h"

#include "common/platform/account.h"
#include "tests/crash/dump_folder_fixture.h"
#include "tests/support/access_list.h"

namespace {

using testing::HasSubstr;

TEST_F(DumpFolder, OthersHaveNoRights) {
    const boost::filesystem::path dumps = folder / "a" / "Dumps";
    const platform::unique_file opened = crash::open_dump_folder(dumps.wstring());
    EXPECT_TRUE(opened);
    EXPECT_TRUE(crash::open_dump_folder(dumps.wstring()));
    EXPECT_FALSE(MoveFileW(dumps.c_str(), (dumps.wstring() + L"_").c_str()));
    // Wine stores no more of an access list than what its own folders can express.
    EXPECT_THAT(test_support::access_list(folder.native()), HasSubstr(L";WD)"));
    EXPECT_THAT(test_support::access_list(dumps.native()),
                AllOf(Not(HasSubstr(L";WD)")), Not(HasSubstr(L";BU)")), HasSubstr(L";FA;;;SY)")));

    const std::pair<WELL_KNOWN_SID_TYPE, bool> owners[] = {{WinLocalSystemSid, true},
                                                           {WinBuiltinAdministratorsSid, true},
                                                           {WinWorldSid, false},
                                                           {WinBuiltinUsersSid, false}};
    for (const auto& [owner, is_trusted] : owners) {
        unsigned char bytes[SECURITY_MAX_SID_SIZE];
        DWORD size = sizeof bytes;
        CreateWellKnownSid(owner, nullptr, bytes, &size);
        EXPECT_EQ(platform::is_trusted_owner(bytes), is_trusted) << owner;
    }
}

TEST_F(DumpFolder, FirstFreeIdentifierIsReserved) {
    const std::wstring path = (folder / "Ormacon_crash").wstring();
    const std::wstring begin = L"Ormacon_crash_" + std::to_wstring(GetCurrentProcessId()) + L"_";
    EXPECT_EQ(crash::reserve_dump_identifier(path), (folder / (begin + L"1")).wstring());
    for (const wchar_t* const end : {L"1.mdmp", L"2-exceptions.log", L"12.mdmp"}) create(begin + end, 1);
    EXPECT_EQ(crash::reserve_dump_identifier(path), (folder / (begin + L"3")).wstring());

    std::set<unsigned> taken;
    for (unsigned i = 1; i < 10'000; ++i) taken.insert(i);
    EXPECT_EQ(crash::first_free_identifier(taken), 10'000u);
    taken.insert(10'000);
    EXPECT_THAT([&] { crash::first_free_identifier(taken); }, Fails("All dump identifiers are reserved."));
}

}  // namespace
