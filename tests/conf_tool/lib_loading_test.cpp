#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/exc/error_text.h"
#include "common/exc/exceptions.h"
#include "conf_tool/lib_caller.h"
#include "tests/conf_tool/library_beside.h"
#include "tests/support/recording_sink.h"

namespace {

using conf_tool::CallerMode;
using conf_tool::CConfigToolLibCaller;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

// Of loading the library and unloading it again.
auto Loading(CallerMode mode) {
    return [=] { const CConfigToolLibCaller caller(mode); };
}

class LibLoading : public testing::Test {
protected:
    test_support::CDemoHost host_;
    test_support::CLibraryBeside library_;
    test_support::CRecordedLog log_;
};

TEST_F(LibLoading, LoadsAndUnloadsInBothModes) {
    Loading(CallerMode::Wizard)();
    Loading(CallerMode::Direct)();
    EXPECT_FALSE(library_.IsLoaded());
}

TEST_F(LibLoading, UnknownModeFailsBeforeAnyLoad) {
    EXPECT_THAT(Loading(static_cast<CallerMode>(2)),
                ThrowsMessage<exc::runtime_exc_t>("Failed to load configuration library: incorrect caller mode"));
    EXPECT_FALSE(library_.IsLoaded());
}

TEST_F(LibLoading, MissingOrBrokenFileIsASystemFailure) {
    const auto fails_with = [](DWORD code, const char* line) {
        return ThrowsMessage<exc::win_sys_exc_t>(exc::get_error_text(code) +
                                                 "\nFailed to load configuration library\n--tr:Error code: " + line);
    };
    library_.Remove();
    EXPECT_THAT(Loading(CallerMode::Direct), fails_with(ERROR_MOD_NOT_FOUND, "0x0000007e"));
    EXPECT_THAT(log_.lines(), ElementsAre("Loading configuration library in direct mode",
                                          "ERR |Loading configuration library in direct mode Failed."));
    library_.Place("this is no program");
    EXPECT_THAT(Loading(CallerMode::Wizard), fails_with(ERROR_BAD_EXE_FORMAT, "0x000000c1"));
}

TEST_F(LibLoading, EachExportIsRequiredInItsModesAlone) {
    const struct {
        CallerMode mode;
        std::vector<std::string> exports;
    } modes[] = {
        {CallerMode::Wizard,
         {"SetCredentials", "SetHost", "SetPort", "SetRepositories", "GetConfig", "GetTBRRepositories", "GetSummary",
          "InitializeWizard", "SetParallelism", "GetParallelismRangeString", "GetScopeEdition", "GetResult",
          "ExportTovakConfig", "ExportRMANConfig", "Cancel", "Commit", "FreeString", "FreeArrayString",
          "FreeRepositories"}},
        {CallerMode::Direct,
         {"SetHostDirect", "SetPortDirect", "SetCredentialsDirect", "SetRepositoriesDirect", "SetParallelismDirect",
          "GetTBRRepositoriesDirect", "MapBackupDirect", "GetConfig", "UninstallDirect", "FreeString",
          "FreeArrayString", "FreeRepositories"}},
    };
    for (const auto& [mode, exports] : modes) {
        EXPECT_EQ(conf_tool::RequiredExports(mode).size(), exports.size());
        for (const std::string& name : exports) {
            library_.PlaceWithout(name);
            EXPECT_THAT(Loading(mode), ThrowsMessage<exc::runtime_exc_t>("Cannot find function [" + name +
                                                                         "] in the configuration library."));
            EXPECT_TRUE(library_.IsLoaded()) << name;
        }
    }
}

TEST_F(LibLoading, FailureOfUnloadingIsRaisedOnce) {
    CConfigToolLibCaller caller(CallerMode::Direct);
    FreeLibrary(GetModuleHandleW(L"OrmaconLib.dll"));
    log_.Clear();
    EXPECT_THAT([&] { caller.Unload(); },
                ThrowsMessage<exc::win_sys_exc_t>(HasSubstr("\nFailed to unload configuration library\n")));
    EXPECT_THAT(log_.lines(),
                ElementsAre("Unloading configuration library", "ERR |Unloading configuration library Failed."));
}

}  // namespace
