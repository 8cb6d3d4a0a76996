#include "common/plugin/working_directory.h"

#include <cstring>
#include <filesystem>

#include <gtest/gtest.h>

#include "common/encoding/convert.h"
#include "common/exc/raise.h"
#include "common/platform/module.h"
#include "common/platform/path.h"
#include "tests/support/hook.h"
#include "tests/support/recording_sink.h"
#include "tests/support/test_registry.h"

HOOK(kernel32, DeviceIoControl)
HOOK(kernel32, GetModuleFileNameW)
HOOK(kernel32, GetModuleHandleExW)

namespace {

// What the system stores of a symbolic link.
struct link_t {
    explicit link_t(const std::wstring& target) : size(static_cast<USHORT>(target.size() * sizeof(wchar_t))) {
        target.copy(name, target.size());
    }

    DWORD tag = IO_REPARSE_TAG_SYMLINK;
    USHORT data_size = sizeof(link_t) - 8, reserved = 0, name_at = 0, size, shown_at = 0, shown_size = size;
    DWORD is_relative = 0;
    wchar_t name[20] = L"";
};

TEST(WorkingDirectory, IsTheTargetLinkPathOfTheRegistryOrElseTheProgramsFolder) {
    test_support::CTestRegistry registry;
    const auto expect = [](const std::wstring& directory, const std::string& lines) {
        const test_support::CRecordedLog log;
        EXPECT_EQ(plugin::find_working_directory(), directory);
        EXPECT_EQ(log.Text(), lines);
    };
    const std::wstring program = platform::program_path(), folder = platform::parent_of(program);
    const std::string shown = encoding::wide_to_utf8(program);
    const std::string not_found = "Cannot find target link path in the registry: ";
    const std::string no_text = not_found + "The registry value is not a text or is empty.\n";
    const std::string by_module = "Getting current directory by module path [" + shown + "]\n";
    expect(folder, not_found + exc::get_error_text(ERROR_FILE_NOT_FOUND) +
                       "\nCannot open registry key [SOFTWARE\\Tovak\\Tovak RMAN Plugin].\n"
                       "--tr:Error code: 0x00000002\n" +
                       by_module);
    registry.SetText(plugin::plugin_registry_key, L"LinkTargetPath", L"");
    expect(folder, no_text + by_module);

    for (const auto& [target, linked] : {std::pair<std::wstring, std::wstring>(L"D:/links\\t.exe", L"D:\\links"),
                                         {L"..\\b\\t.exe", platform::parent_of(folder) + L"\\b"},
                                         {L"t.exe", folder}}) {
        DeviceIoControl_hook::replacement = [&](auto file, auto, auto, auto, void* out, auto, DWORD* size, auto) {
            const link_t link(target);
            std::memcpy(out, &link, *size = sizeof link);
            return file != INVALID_HANDLE_VALUE;
        };
        expect(linked, no_text + by_module + "Path to executable [" + shown + "] is symlink to [" +
                           encoding::wide_to_utf8(target) + "]\n");
    }
    DeviceIoControl_hook::Fail(ERROR_NOT_A_REPARSE_POINT);
    const HMODULE other = GetModuleHandleW(L"kernel32.dll");
    GetModuleHandleExW_hook::replacement = [=](auto, auto, HMODULE* module) { return (*module = other) != nullptr; };
    const std::wstring library = platform::module_path(other);
    expect(platform::parent_of(library),
           no_text + "Getting current directory by dynamic lib path [" + encoding::wide_to_utf8(library) + "]\n");
    GetModuleHandleExW_hook::replacement = nullptr;
    GetModuleFileNameW_hook::Fail(ERROR_MOD_NOT_FOUND);
    const std::wstring current = std::filesystem::current_path().wstring();
    expect(current, no_text + "WARN|" + exc::get_error_text(ERROR_MOD_NOT_FOUND) +
                        "\nWARN|Cannot get module path.\nWARN|--tr:Error code: 0x0000007e\n"
                        "Failed to get current directory path. Temporary value [" +
                        encoding::wide_to_utf8(current) + "]\n");
    GetModuleFileNameW_hook::replacement = nullptr;

    registry.SetText(plugin::plugin_registry_key, L"LinkTargetPath", L"D:\\links \u4e2d");
    expect(L"D:\\links \u4e2d", "Target link path: D:\\links \u4e2d\n");
}

}  // namespace
