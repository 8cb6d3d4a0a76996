// Drives the built library in both modes, the way the tool does.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "common/encoding/convert.h"
#include "conf_tool/lib_caller.h"
#include "tests/support/demo_host.h"

using namespace conf_tool;
using test_support::FileText;

// The library, loaded anew for each test with files of its own.
class demo_library_test : public testing::Test {
protected:
    static std::wstring answer(const std::function<void()>& call) {
        return encoding::utf8_to_wide(test_support::FailureOf(call));
    }

    static std::wstring select(CConfigToolLibCaller& caller, const std::vector<std::wstring>& ids) {
        std::vector<RepositoryEntry> entries;
        for (const std::wstring& id : ids) entries.push_back({id, L"any name", 1, 1, false});
        return answer([&] { caller.SetRepositories(entries); });
    }

    static std::vector<std::wstring> ids_of(const std::vector<RepositoryEntry>& entries) {
        std::vector<std::wstring> ids;
        for (const RepositoryEntry& entry : entries) ids.push_back(entry.id);
        return ids;
    }

    const test_support::CDemoHost host;
    const std::filesystem::path folder = host.folder();
    const std::unique_ptr<CConfigToolLibCaller> callers[2] = {
        std::make_unique<CConfigToolLibCaller>(CallerMode::Direct),
        std::make_unique<CConfigToolLibCaller>(CallerMode::Wizard)};
    CConfigToolLibCaller& direct = *callers[0];
    CConfigToolLibCaller& wizard = *callers[1];
};
