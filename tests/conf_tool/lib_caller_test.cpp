#include <algorithm>
#include <cstring>

#include <gmock/gmock.h>

#include "common/exc/exceptions.h"
#include "common/platform/owned.h"
#include "conf_tool/lib_caller.h"
#include "tests/support/demo_host.h"
#include "tests/support/recording_sink.h"

namespace {

using namespace conf_tool;
using namespace test_support;
using testing::ElementsAre;

// What lies under the name OrmaconLib.dll beside the test program.
class CLibraryBeside {
public:
    CLibraryBeside() { Place(); }
    ~CLibraryBeside() { Remove(); }
    CLibraryBeside(const CLibraryBeside&) = delete;
    CLibraryBeside& operator=(const CLibraryBeside&) = delete;

    // Takes one export more out of the library: it gets a name that sorts where the right one did.
    void PlaceWithout(const std::string& name) {
        const std::string stored = '\0' + name + '\0';
        for (std::size_t at = content_.find(stored); at != std::string::npos; at = content_.find(stored, at + 1)) {
            --content_[at + name.size()];
        }
        Place();
    }

    // From here to its unloading a call of the loaded library's export jumps to the function.
    template <class Function>
    static void Replace(const char* name, Function function) {
        void* const at = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"OrmaconLib.dll"), name));
        unsigned char load_and_jump[] = {0x48, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xe0};
        std::memcpy(load_and_jump + 2, &function, sizeof function);
        DWORD previous = 0;
        VirtualProtect(at, sizeof load_and_jump, PAGE_EXECUTE_READWRITE, &previous);
        std::memcpy(at, load_and_jump, sizeof load_and_jump);
    }

private:
    void Place() {
        Remove();
        WriteFileText(path_, content_);
    }

    // A failed constructor leaves the library loaded for good, which a test undoes.
    void Remove() {
        while (const HMODULE loaded = GetModuleHandleW(L"OrmaconLib.dll")) FreeLibrary(loaded);
        std::filesystem::remove(path_);
    }

    const std::filesystem::path path_ = BesideProgram(L"OrmaconLib.dll");
    std::string content_ = FileText(BesideProgram(L"..\\OrmaconLib.dll"));
};

class LibCaller : public testing::Test {
protected:
    CDemoHost host_;
    CLibraryBeside library_;
    CRecordedLog log_;
};

TEST_F(LibCaller, ReceivedRepositoriesAreLoggedAndAppended) {
    host_.Scenario(
        "<Repositories><Repository id='R1' name='\u00e4' capacity='21990232555520' freeSpace='0.5' encryption='1'/>"
        "<Repository/></Repositories>");
    CConfigToolLibCaller caller(CallerMode::Wizard);
    log_.Clear();
    std::vector<RepositoryEntry> entries(1);
    caller.GetTBRRepositories(entries);
    EXPECT_EQ(entries.size(), 3U);
    EXPECT_THAT(
        log_.lines(),
        ElementsAre("Calling GetTBRRepositories function", "ConfigToolLibCaller received repos: size=[2]",
                    "ConfigToolLibCaller received repo id=[R1] name=[\u00e4] capacity=[21990232555520] "
                    "free_space=[0.5] encryptionEnabled=[1]",
                    "ConfigToolLibCaller received repo id=[] name=[] capacity=[0] free_space=[0] encryptionEnabled=[0]",
                    "Calling GetTBRRepositories function ok."));
    host_.ExpectMemoryBalanced();
}

// What a library returns, and the counts and texts that it got back.
plug_common::SRepositoryCType record{L"R1", nullptr, 1, 1, 2};
plug_common::SRepositoryCType* records[] = {&record, nullptr};
std::vector<std::int32_t> arrays_back;
std::vector<std::wstring> texts_back;

template <Status Result, LibraryRecords Records, std::int32_t Count>
Status GiveRepositories(LibraryRecords* given, std::int32_t* count, LibraryError*) {
    *given = Records;
    *count = Count;
    return Result;
}

template <Status Result>
Status GiveNoHost(LibraryText* user_name, LibraryText* domain, LibraryText* password, LibraryText*, std::int32_t*,
                  std::int32_t*, LibraryRecords*, std::int32_t*, LibraryError*) {
    // cppcheck-suppress constVariable ; the library gives out texts that may be written to
    static wchar_t texts[][2] = {L"u", L"d", L"p"};
    *user_name = texts[0], *domain = texts[1], *password = texts[2];
    return Result;
}

TEST_F(LibCaller, WhatBreaksTheContractIsRefusedAndGivenBackOnce) {
    CConfigToolLibCaller caller(CallerMode::Direct);
    library_.Replace<FreeStringFn>("FreeString", [](wchar_t* text) { texts_back.push_back(text); });
    library_.Replace<FreeRepositoriesFn>("FreeRepositories", [](auto, auto count) { arrays_back.push_back(count); });
    const std::string unknown = "Configuration library returned an unknown error";
    const std::string impossible = "Configuration library returned an impossible number of repositories: ";
    const std::tuple<GetTBRRepositoriesFn, std::string, std::vector<std::int32_t>> cases[] = {
        {GiveRepositories<INT32_MIN, records, -1>, unknown, {}},
        {GiveRepositories<0, nullptr, 2>, "Configuration library returned no repositories", {}},
        {GiveRepositories<0, nullptr, 0>, "ok", {0}},
        {GiveRepositories<0, records, -1>, impossible + "[-1]", {}},
        {GiveRepositories<0, records, 1000001>, impossible + "[1000001]", {}},
        {GiveRepositories<0, records, 2>, "ok", {2}},
    };
    for (const auto& [give, failure, back] : cases) {
        arrays_back.clear();
        library_.Replace("GetTBRRepositoriesDirect", give);
        std::vector<RepositoryEntry> entries;
        EXPECT_EQ(FailureOf([&] { caller.GetTBRRepositories(entries); }), failure);
        EXPECT_EQ(arrays_back, back) << failure;
    }
    ConfigurationSnapshot config;
    library_.Replace("GetConfig", GiveNoHost<1>);
    EXPECT_EQ(FailureOf([&] { caller.GetConfig(config); }), unknown);
    EXPECT_THAT(texts_back, ElementsAre());
    library_.Replace("GetConfig", GiveNoHost<0>);
    EXPECT_EQ(FailureOf([&] { caller.GetConfig(config); }), "Configuration library returned no text");
    EXPECT_THAT(texts_back, testing::UnorderedElementsAre(L"u", L"d", L"p"));
}

TEST_F(LibCaller, AForeignExceptionPassesThroughTheFrame) {
    host_.Scenario("<Function name='SetPortDirect' crash='exception'/>");
    CConfigToolLibCaller caller(CallerMode::Direct);
    log_.Clear();
    EXPECT_THROW(caller.SetPort(1), std::runtime_error);
    EXPECT_THAT(log_.lines(), ElementsAre("Calling SetPort function", "ERR |Failed to call SetPort function"));
}

TEST_F(LibCaller, APasswordInTheLibrarysTextIsConcealed) {
    host_.Scenario("<Function name='SetCredentialsDirect' fail='pw-%1: CORP has no pw-%1'/>");
    CConfigToolLibCaller caller(CallerMode::Direct);
    for (const auto& [password, shown] : {std::pair(L"pw-%1", "***: CORP has no ***"),
                                          {L"CORP", "pw-%1: *** has no pw-%1"},
                                          {L"", "pw-%1: CORP has no pw-%1"}}) {
        EXPECT_EQ(FailureOf([&] { caller.SetCredentials(L"CORP", L"u", password); }), shown);
    }
}

TEST_F(LibCaller, TheFirstMissingExportIsNamed) {
    const std::pair<CallerMode, std::vector<std::string>> modes[] = {
        {CallerMode::Wizard,
         {"SetCredentials", "SetHost", "SetPort", "SetRepositories", "GetConfig", "GetTBRRepositories", "GetSummary",
          "InitializeWizard", "SetParallelism", "GetParallelismRangeString", "GetScopeEdition", "GetResult",
          "ExportTovakConfig", "ExportRMANConfig", "Cancel", "Commit", "FreeString", "FreeArrayString",
          "FreeRepositories"}},
        {CallerMode::Direct,
         {"SetHostDirect", "SetPortDirect", "SetCredentialsDirect", "SetRepositoriesDirect", "SetParallelismDirect",
          "GetTBRRepositoriesDirect", "MapBackupDirect", "GetConfig", "UninstallDirect", "FreeString",
          "FreeArrayString", "FreeRepositories"}}};
    for (const auto& [mode, names] : modes) {
        CLibraryBeside library;
        const auto load = [mode] { const CConfigToolLibCaller caller(mode); };
        // The mode does without what only the other one needs.
        for (const auto& name : modes[mode == CallerMode::Wizard].second) {
            if (!std::ranges::count(names, name)) library.PlaceWithout(name);
        }
        EXPECT_EQ(FailureOf(load), "ok");
        EXPECT_EQ(GetModuleHandleW(L"OrmaconLib.dll"), nullptr);
        for (auto name = names.rbegin(); name != names.rend(); ++name) {
            library.PlaceWithout(*name);
            EXPECT_EQ(FailureOf(load), "Cannot find function [" + *name + "] in the configuration library.");
            EXPECT_NE(GetModuleHandleW(L"OrmaconLib.dll"), nullptr) << *name;
        }
    }
}

}  // namespace
