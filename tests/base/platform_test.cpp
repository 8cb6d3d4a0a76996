#include <cstdio>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/exc/exceptions.h"
#include "common/platform/module.h"
#include "common/platform/os_version.h"
#include "common/platform/owned.h"
#include "common/platform/registry.h"
#include "common/platform/version_resource.h"
#include "tests/support/test_registry.h"

namespace {

using namespace platform;
using testing::EndsWith;
using testing::HasSubstr;

TEST(Registry, ReadsValuesByTheirTypes) {
    test_support::CTestRegistry registry;
    const std::uint32_t number = 0xfedcba98;
    const std::uint64_t large = 0xfedcba9876543210;
    registry.Set(L"K", L"dword", REG_DWORD, &number, sizeof number);
    registry.Set(L"K", L"qword", REG_QWORD, &large, sizeof large);
    registry.Set(L"K", L"short dword", REG_DWORD, &number, 2);
    registry.SetText(L"K", L"text", L"C:\\Tovak \u4e2d");
    registry.SetText(L"K", L"expanded", L"%SystemRoot%\\x", REG_EXPAND_SZ);
    registry.Set(L"K", L"no data", REG_SZ, nullptr, 0);
    registry.Set(L"K", L"unterminated", REG_SZ, L"abc", 7);

    EXPECT_EQ(read_registry_value(L"K", L"dword").dword(), number);
    EXPECT_EQ(read_registry_value(L"K", L"dword").qword(), std::nullopt);
    EXPECT_EQ(read_registry_value(L"K", L"dword").text(), std::nullopt);
    EXPECT_EQ(read_registry_value(L"K", L"qword").qword(), large);
    EXPECT_EQ(read_registry_value(L"K", L"qword").dword(), std::nullopt);
    EXPECT_EQ(read_registry_value(L"K", L"short dword").dword(), std::nullopt);
    EXPECT_EQ(read_registry_value(L"K", L"text").text(), L"C:\\Tovak \u4e2d");
    EXPECT_EQ(read_registry_value(L"K", L"expanded").text(), L"C:\\windows\\x");
    EXPECT_EQ(read_registry_value(L"K", L"no data").text(), L"");
    EXPECT_EQ(read_registry_value(L"K", L"unterminated").text(), L"abc");
}

TEST(Registry, MissingKeyAndValueAreNamed) {
    test_support::CTestRegistry registry;
    registry.SetText(L"K", L"text", L"");
    const auto message_of = [](const wchar_t* key, const wchar_t* value) -> std::string {
        try {
            read_registry_value(key, value);
        } catch (const exc::win_sys_exc_t& failure) {
            EXPECT_EQ(failure.error_code, static_cast<unsigned>(ERROR_FILE_NOT_FOUND));
            return failure.parts().at(1).text;
        }
        return "nothing was raised";
    };
    EXPECT_EQ(message_of(L"No such key", L"v"), "Cannot open registry key [No such key].");
    EXPECT_EQ(message_of(L"K", L"no such value"), "Cannot read registry value [no such value].");
    EXPECT_FALSE(find_registry_value(L"K", L"no such value"));
    EXPECT_EQ(find_registry_value(L"K", L"text")->text(), L"");
}

TEST(Module, KnowsThisProgram) {
    EXPECT_THAT(program_path(), EndsWith(L"base_test.exe"));
    EXPECT_EQ(current_module_path().path, program_path());
    EXPECT_FALSE(current_module_path().is_library);
    EXPECT_EQ(symlink_target(program_path()), std::nullopt);
    EXPECT_EQ(resolve_link(L"C:\\a\\l.exe", L"..\\b\\t.exe"), L"C:\\b\\t.exe");
    EXPECT_EQ(resolve_link(L"C:\\a\\l.exe", L"t.exe"), L"C:\\a\\t.exe");
    EXPECT_EQ(resolve_link(L"C:\\a\\l.exe", L"D:/c/t.exe"), L"D:\\c\\t.exe");
    EXPECT_EQ(parent_of(L"C:\\a\\b.exe"), L"C:\\a");
    EXPECT_EQ(parent_of(L"b.exe"), L"");
}

TEST(VersionResource, AbsentOneIsEmpty) {
    EXPECT_EQ(read_version_resource(program_path()).file_version, "");
    EXPECT_EQ(read_version_resource(L"C:\\no such file").comments, "");
}

TEST(OsVersion, NamesSystemAndArchitecture) {
    unsigned major = 0;
    unsigned minor = 0;
    unsigned build = 0;
    EXPECT_EQ(std::sscanf(os_version_text().c_str(), "Windows %u.%u.%u (", &major, &minor, &build), 3);
    EXPECT_GE(major, 6U);
    EXPECT_THAT(os_version_text(), HasSubstr(", x64)"));
}

TEST(Owned, ClosesOnceAndKeepsTheLastError) {
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    {
        unique_handle first(event);
        unique_handle second(std::move(first));
        EXPECT_FALSE(first);
        EXPECT_TRUE(second);
        SetLastError(42);
    }
    EXPECT_EQ(GetLastError(), 42U);
    DWORD flags = 0;
    EXPECT_FALSE(GetHandleInformation(event, &flags));
    EXPECT_FALSE(unique_file(INVALID_HANDLE_VALUE));
    EXPECT_FALSE(unique_file());
}

}  // namespace
