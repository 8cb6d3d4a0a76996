#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/exc/exceptions.h"
#include "conf_tool/lib_caller.h"
#include "tests/conf_tool/library_beside.h"
#include "tests/support/recording_sink.h"

namespace {

using namespace conf_tool;
using testing::ElementsAre;

class LibCalls : public testing::Test {
protected:
    test_support::CDemoHost host_;
    test_support::CLibraryBeside library_;
};

struct Operation {
    const char* name;         // in the log
    const char* export_name;  // in the library
    CallerMode mode;
    std::function<void(CConfigToolLibCaller&)> call;
    const char* failure_name = name;
};

void GetConfig(CConfigToolLibCaller& caller) {
    ConfigurationSnapshot config;
    caller.GetConfig(config);
}

void GetTBRRepositories(CConfigToolLibCaller& caller) {
    std::vector<RepositoryEntry> entries;
    caller.GetTBRRepositories(entries);
}

const std::vector<RepositoryEntry> one_repository{{L"REP-0001", L"Central Primary", 1, 1, false}};

constexpr CallerMode wizard = CallerMode::Wizard;
constexpr CallerMode direct = CallerMode::Direct;

// A table, one operation a line:
// clang-format off
const Operation operations[] = {
    {"SetCredentials", "SetCredentials", wizard, [](auto& c) { c.SetCredentials(L"d", L"u", L"p"); }},
    {"SetHost", "SetHost", wizard, [](auto& c) { c.SetHost(L"h"); }},
    {"SetPort", "SetPort", wizard, [](auto& c) { c.SetPort(1); }},
    {"SetRepositories", "SetRepositories", wizard, [](auto& c) { c.SetRepositories(one_repository); }},
    {"SetParallelism", "SetParallelism", wizard, [](auto& c) { c.SetParallelism(1); }},
    {"GetConfig", "GetConfig", wizard, GetConfig, "CallGetConfig"},
    {"GetTBRRepositories", "GetTBRRepositories", wizard, GetTBRRepositories},
    {"GetParallelismRangeString", "GetParallelismRangeString", wizard, [](auto& c) { c.GetParallelismRangeString(); }},
    {"GetSummary", "GetSummary", wizard, [](auto& c) { c.GetSummary(); }},
    {"GetResult", "GetResult", wizard, [](auto& c) { c.GetResult(); }},
    {"GetScopeEdition", "GetScopeEdition", wizard, [](auto& c) { c.GetScopeEdition(); }},
    {"InitializeWizard", "InitializeWizard", wizard, [](auto& c) { c.InitializeWizard(); }},
    {"ExportTovakConfig", "ExportTovakConfig", wizard, [](auto& c) { c.ExportTovakConfig(L"x"); }},
    {"ExportRMANConfig", "ExportRMANConfig", wizard, [](auto& c) { c.ExportRMANConfig(L"x"); }},
    {"Cancel", "Cancel", wizard, [](auto& c) { c.Cancel(); }},
    {"Commit", "Commit", wizard, [](auto& c) { c.Commit(); }},
    {"SetCredentials", "SetCredentialsDirect", direct, [](auto& c) { c.SetCredentials(L"d", L"u", L"p"); }},
    {"SetHost", "SetHostDirect", direct, [](auto& c) { c.SetHost(L"h"); }},
    {"SetPort", "SetPortDirect", direct, [](auto& c) { c.SetPort(1); }},
    {"SetRepositories", "SetRepositoriesDirect", direct, [](auto& c) { c.SetRepositories(one_repository); }},
    {"SetParallelism", "SetParallelismDirect", direct, [](auto& c) { c.SetParallelism(1); }},
    {"GetConfig", "GetConfig", direct, GetConfig, "CallGetConfig"},
    {"GetTBRRepositories", "GetTBRRepositoriesDirect", direct, GetTBRRepositories},
    {"MapBackup", "MapBackupDirect", direct, [](auto& c) { c.MapBackup(); }},
    {"Uninstall", "UninstallDirect", direct, [](auto& c) { c.Uninstall(); }},
};
// clang-format on

std::string FailureOf(const std::function<void(CConfigToolLibCaller&)>& call, CConfigToolLibCaller& caller) {
    try {
        call(caller);
    } catch (const exc::runtime_exc_t& failure) {
        return failure.what();
    }
    return "nothing was thrown";
}

TEST_F(LibCalls, EachFailureHasTheLibrarysTextAndItsLogLines) {
    for (const Operation& operation : operations) {
        CConfigToolLibCaller caller(operation.mode);
        const std::string function = std::string("<Function name='") + operation.export_name + "' ";
        const std::string calling = std::string("Calling ") + operation.name + " function";
        const std::string failed = std::string("ERR |Failed to call ") + operation.failure_name + " function";
        for (const auto& [fault, message] :
             {std::pair("fail='Refused: %1 \u00e4\u4e2d'/>", "Refused: %1 \u00e4\u4e2d"),
              std::pair("failWithoutText='1'/>", "Configuration library returned an unknown error")}) {
            host_.Scenario(function + fault);
            test_support::CRecordedLog log;
            EXPECT_EQ(FailureOf(operation.call, caller), message) << operation.export_name;
            EXPECT_THAT(log.lines(), ElementsAre(calling, failed)) << operation.export_name;
            host_.ExpectMemoryBalanced(operation.export_name);
        }
        EXPECT_EQ(host_.Calls(operation.export_name), 2);
    }
}

TEST_F(LibCalls, ReceivedRepositoriesAreLoggedAndAppended) {
    host_.Scenario(
        "<Repositories><Repository id='R1' name='\u00e4' capacity='21990232555520' freeSpace='0.5' encryption='1'/>"
        "<Repository/></Repositories>");
    CConfigToolLibCaller caller(CallerMode::Wizard);
    test_support::CRecordedLog log;
    std::vector<RepositoryEntry> entries = one_repository;
    caller.GetTBRRepositories(entries);
    EXPECT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[2].id, L"");
    EXPECT_THAT(
        log.lines(),
        ElementsAre("Calling GetTBRRepositories function", "ConfigToolLibCaller received repos: size=[2]",
                    "ConfigToolLibCaller received repo id=[R1] name=[\u00e4] capacity=[21990232555520] "
                    "free_space=[0.5] encryptionEnabled=[1]",
                    "ConfigToolLibCaller received repo id=[] name=[] capacity=[0] free_space=[0] encryptionEnabled=[0]",
                    "Calling GetTBRRepositories function ok."));
    host_.Scenario("<Repositories/>");
    caller.GetTBRRepositories(entries);
    EXPECT_EQ(entries.size(), 3U);
    host_.ExpectMemoryBalanced();
}

// What a library returns, and the counts and texts that it got back.
plug_common::SRepositoryCType record{L"R1", nullptr, 1, 1, 0};
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

TEST_F(LibCalls, WhatBreaksTheContractIsRefusedAndGivenBackOnce) {
    CConfigToolLibCaller caller(CallerMode::Direct);
    library_.Replace<FreeStringFn>("FreeString", [](wchar_t* text) { texts_back.push_back(text); });
    library_.Replace<FreeRepositoriesFn>("FreeRepositories", [](auto, auto count) { arrays_back.push_back(count); });
    const std::string unknown = "Configuration library returned an unknown error";
    const std::string impossible = "Configuration library returned an impossible number of repositories: ";
    const struct {
        GetTBRRepositoriesFn give;
        std::string size;  // as it is logged
        std::string failure;
        std::vector<std::int32_t> back;
    } cases[] = {
        {GiveRepositories<INT32_MIN, records, -1>, "", unknown, {}},
        {GiveRepositories<1, nullptr, INT32_MAX>, "", unknown, {}},
        {GiveRepositories<0, nullptr, 2>, "[2]", "Configuration library returned no repositories", {}},
        {GiveRepositories<0, nullptr, 0>, "[0]", "nothing was thrown", {0}},
        {GiveRepositories<0, records, -1>, "[-1]", "nothing was thrown", {-1}},
        {GiveRepositories<0, records, INT32_MAX>, "[2147483647]", impossible + "[2147483647]", {INT32_MAX}},
        {GiveRepositories<0, records, 2>, "[2]", "nothing was thrown", {2}},
    };
    for (const auto& c : cases) {
        arrays_back.clear();
        library_.Replace("GetTBRRepositoriesDirect", c.give);
        test_support::CRecordedLog log;
        EXPECT_EQ(FailureOf(GetTBRRepositories, caller), c.failure);
        EXPECT_EQ(arrays_back, c.back) << c.failure;
        EXPECT_EQ(log.Contains("ConfigToolLibCaller received repos: size=" + c.size), !c.size.empty()) << c.failure;
    }
    library_.Replace("GetConfig", GiveNoHost<1>);
    EXPECT_EQ(FailureOf(GetConfig, caller), unknown);
    EXPECT_THAT(texts_back, ElementsAre());
    library_.Replace("GetConfig", GiveNoHost<0>);
    EXPECT_EQ(FailureOf(GetConfig, caller), "Configuration library returned no text");
    EXPECT_THAT(texts_back, testing::UnorderedElementsAre(L"u", L"d", L"p"));
}

TEST_F(LibCalls, AForeignExceptionPassesThroughTheFrame) {
    host_.Scenario("<Function name='SetPortDirect' crash='exception'/>");
    CConfigToolLibCaller caller(CallerMode::Direct);
    test_support::CRecordedLog log;
    EXPECT_THROW(caller.SetPort(1), std::runtime_error);
    EXPECT_THAT(log.lines(), ElementsAre("Calling SetPort function", "ERR |Failed to call SetPort function"));
}

}  // namespace
