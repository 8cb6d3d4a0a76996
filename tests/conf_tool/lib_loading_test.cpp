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

template <class Exception>
std::string LoadFailure(CallerMode mode) {
    try {
        const CConfigToolLibCaller caller(mode);
    } catch (const Exception& failure) {
        return failure.what();
    }
    return "loaded";
}

class LibLoading : public testing::Test {
protected:
    test_support::CDemoHost host_;
    test_support::CLibraryBeside library_;
    test_support::CRecordedLog log_;
};

TEST_F(LibLoading, LoadsAndUnloadsInBothModes) {
    EXPECT_EQ(LoadFailure<exc::exc_base_t>(CallerMode::Wizard), "loaded");
    EXPECT_EQ(LoadFailure<exc::exc_base_t>(CallerMode::Direct), "loaded");
    EXPECT_FALSE(library_.IsLoaded());
    EXPECT_THAT(
        log_.lines(),
        ElementsAre("Loading configuration library in wizard mode", "Loading configuration library in wizard mode ok.",
                    "Unloading configuration library", "Unloading configuration library ok.",
                    "Loading configuration library in direct mode", "Loading configuration library in direct mode ok.",
                    "Unloading configuration library", "Unloading configuration library ok."));
}

TEST_F(LibLoading, UnknownModeFailsBeforeAnyLoad) {
    EXPECT_EQ(LoadFailure<exc::runtime_exc_t>(static_cast<CallerMode>(2)),
              "Failed to load configuration library: incorrect caller mode");
    EXPECT_FALSE(library_.IsLoaded());
}

TEST_F(LibLoading, MissingOrBrokenFileIsASystemFailure) {
    library_.Remove();
    EXPECT_EQ(LoadFailure<exc::win_sys_exc_t>(CallerMode::Direct),
              exc::get_error_text(ERROR_MOD_NOT_FOUND) +
                  "\nFailed to load configuration library\n--tr:Error code: 0x0000007e");
    EXPECT_THAT(log_.lines(), ElementsAre("Loading configuration library in direct mode",
                                          "ERR |Loading configuration library in direct mode Failed."));
    library_.Place("this is no program");
    EXPECT_EQ(LoadFailure<exc::win_sys_exc_t>(CallerMode::Wizard),
              exc::get_error_text(ERROR_BAD_EXE_FORMAT) +
                  "\nFailed to load configuration library\n--tr:Error code: 0x000000c1");
}

struct ModeExports {
    CallerMode mode;
    CallerMode other_mode;
    std::vector<const char*> only_here;
};

const ModeExports mode_exports[] = {
    {CallerMode::Wizard,
     CallerMode::Direct,
     {"SetCredentials", "SetHost", "SetPort", "SetRepositories", "GetTBRRepositories", "GetSummary", "InitializeWizard",
      "SetParallelism", "GetParallelismRangeString", "GetScopeEdition", "GetResult", "ExportTovakConfig",
      "ExportRMANConfig", "Cancel", "Commit"}},
    {CallerMode::Direct,
     CallerMode::Wizard,
     {"SetHostDirect", "SetPortDirect", "SetCredentialsDirect", "SetRepositoriesDirect", "SetParallelismDirect",
      "GetTBRRepositoriesDirect", "MapBackupDirect", "UninstallDirect"}},
};

std::string Missing(const std::string& name) {
    return "Cannot find function [" + name + "] in the configuration library.";
}

TEST_F(LibLoading, EachExportIsRequiredInItsModeAlone) {
    for (const ModeExports& exports : mode_exports) {
        EXPECT_EQ(conf_tool::RequiredExports(exports.mode).size(), exports.only_here.size() + 4);
        for (const char* name : exports.only_here) {
            library_.PlaceWithout(name);
            EXPECT_EQ(LoadFailure<exc::exc_base_t>(exports.other_mode), "loaded") << name;
            EXPECT_EQ(LoadFailure<exc::runtime_exc_t>(exports.mode), Missing(name));
            EXPECT_TRUE(library_.IsLoaded()) << name;
        }
    }
}

TEST_F(LibLoading, SharedExportsAreRequiredInBothModes) {
    for (const char* name : {"GetConfig", "FreeString", "FreeArrayString", "FreeRepositories"}) {
        library_.PlaceWithout(name);
        EXPECT_EQ(LoadFailure<exc::runtime_exc_t>(CallerMode::Wizard), Missing(name));
        EXPECT_EQ(LoadFailure<exc::runtime_exc_t>(CallerMode::Direct), Missing(name));
    }
}

TEST_F(LibLoading, FailureOfUnloadingIsRaisedOnce) {
    CConfigToolLibCaller caller(CallerMode::Direct);
    FreeLibrary(GetModuleHandleW(L"OrmaconLib.dll"));
    log_.Clear();
    try {
        caller.Unload();
        ADD_FAILURE() << "nothing was raised";
    } catch (const exc::win_sys_exc_t& failure) {
        EXPECT_EQ(failure.parts().at(1).text, "Failed to unload configuration library");
    }
    EXPECT_THAT(log_.lines(),
                ElementsAre("Unloading configuration library", "ERR |Unloading configuration library Failed."));
}

}  // namespace
