// state_race [COUNT]: two processes change the same configuration at the same time, COUNT times each (200 if omitted):
// one its port, the other its parallelism. Each must read its own value back after every change.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <process.h>

#include "common/exc/exceptions.h"
#include "common/platform/module.h"
#include "common/win32.h"
#include "conf_tool/lib_caller.h"

using namespace conf_tool;

namespace {

int value_of(int change) { return 1 + change % 64; }

// Returns how many changes failed or were lost.
int change_values(bool is_port, int count) {
    CConfigToolLibCaller library(CallerMode::Direct);
    int failed = 0, lost = 0;
    ULONGLONG longest = 0;
    for (int i = 1; i <= count; ++i) {
        const ULONGLONG start = GetTickCount64();
        try {
            is_port ? library.SetPort(value_of(i)) : library.SetParallelism(value_of(i));
            ConfigurationSnapshot stored;
            library.GetConfig(stored);
            lost += (is_port ? static_cast<int>(stored.port) : stored.parallelism) != value_of(i);
        } catch (const exc::runtime_exc_t& failure) {
            if (++failed == 1) std::printf("%s\n", failure.what());
        }
        longest = std::max(longest, GetTickCount64() - start);
    }
    std::printf("%s: %d changes, %d failed, %d lost, longest %llu ms\n", is_port ? "port" : "parallelism", count,
                failed, lost, longest);
    return failed + lost;
}

int race(int count) {
    const auto folder = std::filesystem::path(platform::program_path()).parent_path() / "test_folders" / "state_race";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    SetEnvironmentVariableW(L"ORMACON_DEMO_STATE", (folder / "state.xml").c_str());
    SetEnvironmentVariableW(L"ORMACON_DEMO_SCENARIO", nullptr);
    std::vector<intptr_t> children;
    for (const wchar_t* value : {L"port", L"parallelism"})
        children.push_back(_wspawnl(_P_NOWAIT, platform::program_path().c_str(), L"state_race",
                                    std::to_wstring(count).c_str(), value, nullptr));
    bool good = true;
    for (const intptr_t child : children) {
        int status = 1;
        good = _cwait(&status, child, 0) == child && status == 0 && good;
    }
    CConfigToolLibCaller library(CallerMode::Direct);
    ConfigurationSnapshot stored;
    library.GetConfig(stored);
    good = stored.port == value_of(count) && stored.parallelism == value_of(count) && good;
    library.Uninstall();
    good = std::filesystem::is_empty(folder) && good;
    std::printf("%s\n", good ? "passed" : "FAILED");
    return good ? 0 : 1;
}

}  // namespace

int main(int count, char** words) {
    const int changes = count > 1 ? std::stoi(words[1]) : 200;
    return count > 2 ? change_values(std::string(words[2]) == "port", changes) != 0 : race(changes);
}
