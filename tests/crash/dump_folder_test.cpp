#include "common/crash/dump_folder.h"

#include "common/encoding/convert.h"
#include "common/platform/trusted_owner.h"
#include "tests/crash/dump_folder_fixture.h"

namespace {

using testing::HasSubstr;

void open_to_everyone(const std::filesystem::path& path) {
    platform::unique_local descriptor;
    ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:P(A;OICI;FA;;;WD)", SDDL_REVISION_1, descriptor.put(),
                                                         nullptr);
    ASSERT_TRUE(SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor.get()));
    ASSERT_THAT(test_support::AccessList(path.native()), HasSubstr(L";WD)"));
}

TEST_F(DumpFolder, OthersHaveNoRights) {
    const std::filesystem::path dumps = folder / "Dumps";
    const std::filesystem::path planted = dumps / "planted";
    open_to_everyone(folder);
    for (const bool existed : {false, true}) {
        if (existed) {
            open_to_everyone(dumps);
            test_support::WriteFileText(planted, "x");
            open_to_everyone(planted);
        }
        const crash::dump_folder_t opened = crash::open_dump_folder(dumps.wstring());
        EXPECT_TRUE(crash::open_dump_folder(dumps.wstring()).folder) << "by another program";
        EXPECT_FALSE(MoveFileW(dumps.c_str(), (dumps.wstring() + L"_").c_str()));
        EXPECT_FALSE(MoveFileW(folder.c_str(), (folder.wstring() + L"_").c_str()));
        EXPECT_THAT(test_support::AccessList(dumps.native()),
                    AllOf(Not(HasSubstr(L";WD)")), Not(HasSubstr(L";BU)")), HasSubstr(L";FA;;;SY)")));
    }
    EXPECT_THAT(test_support::AccessList(planted.native()), HasSubstr(L";WD)"));
}

TEST_F(DumpFolder, FolderThatIsSwappedBetweenLookAndUseIsRefused) {
    const std::wstring dumps = (folder / "Dumps").wstring();
    crash::open_dump_folder((folder / "elsewhere" / "Dumps").wstring());
    CreateFileW_hook::replacement = [&](std::wstring path, auto... rest) {
        if (path.ends_with(L"\\Dumps")) path = (folder / "elsewhere" / "Dumps").wstring();
        return CreateFileW_hook::System(path.c_str(), rest...);
    };
    EXPECT_THAT([&] { crash::open_dump_folder(dumps); },
                Fails("Dump folder [" + encoding::wide_to_utf8(dumps) + "] is a link."));
    CreateFileW_hook::replacement = nullptr;
}

TEST(TrustedOwner, IsTheSystemOrAnAdministrator) {
    for (const auto& [owner, is_trusted] :
         {std::pair(WinLocalSystemSid, true), {WinBuiltinAdministratorsSid, true}, {WinBuiltinUsersSid, false}}) {
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
