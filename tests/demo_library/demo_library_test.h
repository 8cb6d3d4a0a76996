// Drives the built library through its binary interface, the way the tool does.
#pragma once

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "conf_tool/library_interface.h"
#include "tests/support/demo_host.h"

using namespace conf_tool;
using plug_common::SRepositoryCType;
using test_support::FileText;

// The library, loaded anew for each test with files of its own.
class demo_library_test : public testing::Test {
protected:
    struct config_t {
        std::wstring user_name, domain, password, host;
        std::int32_t port = -1, parallelism = -1;
        std::vector<std::wstring> ids;
    };

    void SetUp() override { load(); }
    void TearDown() override { FreeLibrary(library); }

    void load() {
        library = LoadLibraryW(L"OrmaconLib.dll");
        ASSERT_NE(library, nullptr) << GetLastError();
    }

    template <class Function>
    Function function(const char* name) {
        const FARPROC address = GetProcAddress(library, name);
        EXPECT_NE(address, nullptr) << name;
        return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
    }

    // "ok", the error text, or "no text".
    template <class Function, class... Arguments>
    std::wstring call(const char* name, Arguments... arguments) {
        LibraryError error = nullptr;
        const Status status = function<Function>(name)(arguments..., &error);
        EXPECT_TRUE(status != 0 || error == nullptr);
        return status == 0 ? L"ok" : error ? taken(error) : L"no text";
    }

    std::wstring plain(const char* name) { return call<PlainFn>(name); }

    std::wstring taken(wchar_t* text) {
        const std::wstring copy = text ? text : L"null";
        function<FreeStringFn>("FreeString")(text);
        return copy;
    }

    std::vector<std::wstring> taken(LibraryRecords records, std::int32_t count) {
        std::vector<std::wstring> ids;
        for (std::int32_t i = 0; i < count; ++i) ids.push_back(records[i]->id ? records[i]->id : L"null");
        function<FreeRepositoriesFn>("FreeRepositories")(records, count);
        return ids;
    }

    std::wstring select(const char* name, const std::vector<const wchar_t*>& ids) {
        std::vector<SRepositoryCType> records;
        for (const wchar_t* id : ids) records.push_back({id, L"any name", 1, 1, 0});
        return call<SetRepositoriesFn>(name, static_cast<const SRepositoryCType*>(records.data()),
                                       static_cast<std::int32_t>(records.size()));
    }

    config_t config() {
        config_t result;
        LibraryText texts[4] = {};
        LibraryRecords records = nullptr;
        std::int32_t count = 0;
        EXPECT_EQ(call<GetConfigFn>("GetConfig", &texts[0], &texts[1], &texts[2], &texts[3], &result.port,
                                    &result.parallelism, &records, &count),
                  L"ok");
        result.user_name = taken(texts[0]), result.domain = taken(texts[1]), result.password = taken(texts[2]);
        result.host = taken(texts[3]), result.ids = taken(records, count);
        return result;
    }

    // The caller gives them back.
    LibraryRecords repositories(std::int32_t& count, const char* name = "GetTBRRepositories") {
        LibraryRecords records = nullptr;
        EXPECT_EQ(call<GetTBRRepositoriesFn>(name, &records, &count), L"ok");
        return records;
    }

    const test_support::CDemoHost host;
    const std::filesystem::path folder = host.folder();
    HMODULE library = nullptr;
};
