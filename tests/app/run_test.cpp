#include <iostream>

#include <gmock/gmock.h>

#include "app/run.h"
#include "common/exc/raise.h"
#include "common/logging/open_log.h"
#include "common/plugin/working_directory.h"
#include "tests/support/demo_host.h"
#include "tests/support/recording_sink.h"
#include "tests/support/hook.h"
#include "tests/support/test_registry.h"

#include <objidl.h>

HOOK(kernel32, FreeLibrary)
HOOK(kernel32, GetModuleHandleW)
HOOK(kernel32, SetDllDirectoryW)
HOOK(kernel32, SetProcessMitigationPolicy)

TEST(Run, ReportsWhatFailsBeforeTheLogIsOpenAndAfterTheCommand) {
    const test_support::CDemoHost host;
    test_support::CTestRegistry registry;
    registry.SetText(L"SOFTWARE\\Tovak\\Tovak Central", L"LogDirectory", host.folder().wstring());
    registry.SetText(plugin::plugin_registry_key, plugin::link_target_path_value, L"");
    const test_support::CRecordedLog log;
    std::ostringstream printed;
    std::streambuf* const screen = std::cout.rdbuf(printed.rdbuf());
    const char* const words[] = {"Ormacon.exe", "--set-port", "10006"};
    std::wstring searched_instead = L"the current folder";
    SetDllDirectoryW_hook::replacement = [&](LPCWSTR folder) {
        searched_instead = folder;
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    };
    SetProcessMitigationPolicy_hook::Fail(ERROR_INVALID_PARAMETER);
    // Wine's own function is not found there: the program does what it does on Windows.
    GetModuleHandleW_hook::replacement = [](LPCWSTR name) {
        const bool is_wines = name != nullptr && std::wstring_view(name) == L"ntdll.dll";
        return GetModuleHandleW_hook::System(is_wines ? L"kernel32.dll" : name);
    };
    FreeLibrary_hook::replacement = [](HMODULE module) {
        if (module != GetModuleHandleW(L"OrmaconLib.dll")) return FreeLibrary_hook::System(module);
        SetLastError(ERROR_BUSY);
        return FALSE;
    };
    app::Run(3, words);
    SetDllDirectoryW_hook::replacement = nullptr;
    FreeLibrary_hook::replacement = nullptr;
    FreeLibrary(GetModuleHandleW(L"OrmaconLib.dll"));
    std::cout.rdbuf(screen);
    logging::close_log();

    EXPECT_EQ(searched_instead, L"");
    EXPECT_THAT(log.Text(),
                testing::HasSubstr(
                    "\n" + std::string(84, '=') +
                    "\nWARN|Searching no libraries in the current folder: " + exc::get_error_text(ERROR_ACCESS_DENIED) +
                    "\nWARN|Following no junctions that ordinary accounts have made: " +
                    exc::get_error_text(ERROR_INVALID_PARAMETER) + "\nCannot find target link path in the registry: "));
    EXPECT_EQ(printed.str(), exc::get_error_text(ERROR_BUSY) +
                                 "\nFailed to unload configuration library\n--tr:Error code: 0x000000aa\n");
    EXPECT_THAT(log.lines(), testing::Contains("ERR |Unloading configuration library Failed."));
    APTTYPE apartment{};
    APTTYPEQUALIFIER qualifier{};
    EXPECT_EQ(CoGetApartmentType(&apartment, &qualifier), S_OK);
    EXPECT_EQ(apartment, APTTYPE_MTA);
}
