#include <gmock/gmock.h>

#include "common/exc/raise.h"
#include "common/platform/owned.h"
#include "common/platform/path.h"
#include "common/platform/registry.h"
#include "common/platform/wipe.h"
#include "tests/support/test_registry.h"

namespace {

using namespace platform;
using testing::ThrowsMessage;

TEST(Registry, ReadsValuesByTheirTypesAndWhateverWasStored) {
    test_support::CTestRegistry registry;
    const std::uint32_t number = 0xfedcba98;
    registry.Set(L"K", L"dword", REG_DWORD, &number, sizeof number);
    registry.Set(L"K", L"short dword", REG_DWORD, &number, 2);
    registry.Set(L"K", L"binary", REG_BINARY, &number, sizeof number);
    registry.SetText(L"K", L"expanded", L"%SystemRoot%\\x", REG_EXPAND_SZ);
    registry.Set(L"K", L"no data", REG_SZ, nullptr, 0);
    registry.Set(L"K", L"unterminated", REG_SZ, L"abcd", 7);
    const auto read = [](const wchar_t* name) { return find_registry_value(L"K", name).value(); };
    EXPECT_EQ(read(L"dword").dword(), number);
    EXPECT_FALSE(read(L"dword").text());
    for (const wchar_t* other : {L"short dword", L"binary", L"no data"}) EXPECT_FALSE(read(other).dword()) << other;
    EXPECT_EQ(read(L"expanded").text(), std::wstring(_wgetenv(L"SystemRoot")) + L"\\x");
    EXPECT_EQ(read(L"no data").text(), L"");
    EXPECT_EQ(read(L"unterminated").text(), L"abc");
    EXPECT_THAT([] { read_registry_value(L"K", L"no such value"); },
                ThrowsMessage<exc::win_sys_exc_t>(exc::get_error_text(ERROR_FILE_NOT_FOUND) +
                                                  "\nCannot read registry value [no such value].\n"
                                                  "--tr:Error code: 0x00000002"));
}

TEST(Path, IsTakenApartAndJoinedAndHasNoLengthLimitForTheSystem) {
    const std::pair<std::wstring, std::wstring> parents[] = {
        {L"C:\\a/b.exe", L"C:\\a"}, {L"b.exe", L""}, {L"D:\\b.exe", L"D:\\"}};
    for (const auto& [path, parent] : parents)
        EXPECT_EQ(parent_of(path) + L"|" + file_name_of(path), parent + L"|b.exe");
    EXPECT_EQ(join_path(L"D:\\", L"x"), L"D:\\x");
    EXPECT_EQ(join_path(L"D:\\a", L"x"), L"D:\\a\\x");
    EXPECT_EQ(system_path(L"C:/a/../b."), L"\\\\?\\C:\\b");
    EXPECT_EQ(system_path(L"\\\\server\\share\\a"), L"\\\\?\\UNC\\server\\share\\a");
    for (const wchar_t* unchanged : {L"\\\\?\\C:\\a", L"\\\\.\\pipe\\a"}) EXPECT_EQ(system_path(unchanged), unchanged);
    EXPECT_EQ(system_path(L"NUL"), L"\\\\.\\NUL");
}

TEST(Owned, ClosesOnceAndKeepsTheLastError) {
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    {
        unique_handle first(event);
        const unique_handle second(std::move(first));
        EXPECT_FALSE(first);
    }
    DWORD flags = 0;
    EXPECT_FALSE(GetHandleInformation(event, &flags));
    SetLastError(42);
    unique_handle(event).reset();  // fails
    EXPECT_EQ(GetLastError(), 42U);
}

TEST(Wipe, OverwritesShortAndLongTexts) {
    for (const std::size_t size : {3U, 100U}) {
        std::wstring secret(size, L's');
        const wchar_t* memory = secret.data();
        {
            const wipe_at_exit_t wipe(secret);
            secret.resize(1);  // the rest of the text is still in memory
        }
        EXPECT_TRUE(secret.empty());
        // cppcheck-suppress invalidContainer ; a shorter text keeps its memory
        EXPECT_EQ(std::wstring(memory, size), std::wstring(size, L'\0'));
    }
}

}  // namespace
