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
class DemoLibrary : public testing::Test {
protected:
    static std::wstring Answer(const std::function<void()>& call) {
        return encoding::utf8_to_wide(test_support::FailureOf(call));
    }

    static std::wstring Select(CConfigToolLibCaller& caller, const std::vector<std::wstring>& ids) {
        std::vector<RepositoryEntry> entries;
        for (const std::wstring& id : ids) entries.push_back({id, L"any name", 1, 1, false});
        return Answer([&] { caller.SetRepositories(entries); });
    }

    static std::vector<std::wstring> IdsOf(const std::vector<RepositoryEntry>& entries) {
        std::vector<std::wstring> ids;
        for (const RepositoryEntry& entry : entries) ids.push_back(entry.id);
        return ids;
    }

    const test_support::CDemoHost host;
    const std::filesystem::path folder = host.folder();
    const std::filesystem::path state = folder / "state.xml";
    // The destructor may throw, as that of a test must not.
    const std::unique_ptr<CConfigToolLibCaller> callers[2] = {
        std::make_unique<CConfigToolLibCaller>(CallerMode::Direct),
        std::make_unique<CConfigToolLibCaller>(CallerMode::Wizard)};
    CConfigToolLibCaller &direct = *callers[0], &wizard = *callers[1];
};
