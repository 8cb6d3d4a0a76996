// An empty folder of the test's own, with files of a chosen age.
#pragma once

#include <chrono>
#include <filesystem>
#include <set>
#include <string>

#include <gmock/gmock.h>

#include "common/platform/owned.h"
#include "tests/support/demo_host.h"
#include "tests/support/hook.h"

HOOK(kernel32, CreateFileW)
HOOK(kernel32, DuplicateHandle)
HOOK(kernel32, LoadLibraryExW)
HOOK(kernel32, SetFileInformationByHandle)
HOOK(kernel32, WriteFile)

class DumpFolder : public testing::Test {
protected:
    void create(const std::wstring& name, int age_in_hours) const {
        test_support::WriteFileText(folder / name, "x");
        const auto now = std::filesystem::file_time_type::clock::now();
        std::filesystem::last_write_time(folder / name, now - std::chrono::hours(age_in_hours));
    }

    // As another program holds a file that it reads.
    platform::unique_file hold(const std::wstring& name, DWORD also_shared = 0) const {
        return platform::unique_file(CreateFileW((folder / name).c_str(), GENERIC_READ, FILE_SHARE_READ | also_shared,
                                                 nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    }

    std::set<std::wstring> names() const {
        std::set<std::wstring> result;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            result.insert(entry.path().filename().wstring());
        return result;
    }

    const test_support::CTestFolder around;
    std::filesystem::path folder = around.path;
};

// For an action.
template <class Matcher>
auto Fails(const Matcher& message) {
    return testing::ThrowsMessage<exc::exc_base_t>(message);
}
