// A host of the test's own for the demonstration library: state, scenario and report lie in a fresh folder.
#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "common/exc/exceptions.h"
#include "common/platform/module.h"
#include "common/win32.h"

#include <sddl.h>

namespace test_support {

inline std::string FileText(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

inline void WriteFileText(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

inline std::filesystem::path BesideProgram(const wchar_t* name) {
    return std::filesystem::path(platform::program_path()).parent_path() / name;
}

// The entries of the access list of a file or folder, such as "(A;;FA;;;SY)" for full access of the system.
inline std::wstring AccessList(const std::filesystem::path& path) {
    char descriptor[1024];
    DWORD size = 0;
    LPWSTR text = nullptr;
    GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor, sizeof descriptor, &size);
    ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text,
                                                         nullptr);
    const std::wstring result = text ? text : L"";
    LocalFree(text);
    return result;
}

// Returns the text of the failure, or "ok".
inline std::string FailureOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const exc::runtime_exc_t& failure) {
        return failure.what();
    }
    return "ok";
}

// A folder of the running test, below the test program's; empty at the start and deleted at the end.
class CTestFolder {
public:
    CTestFolder() {
        std::filesystem::remove_all(path);
        std::filesystem::create_directories(path);
    }
    ~CTestFolder() { std::filesystem::remove_all(path); }
    CTestFolder(const CTestFolder&) = delete;
    CTestFolder& operator=(const CTestFolder&) = delete;

    std::filesystem::path operator/(const std::filesystem::path& name) const { return path / name; }

    const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
    const std::filesystem::path path = BesideProgram(L"test_folders") / test->test_suite_name() / test->name();
};

class CDemoHost {
public:
    CDemoHost() {
        SetEnvironmentVariableW(L"ORMACON_DEMO_STATE", (folder_ / "state.xml").c_str());
        SetEnvironmentVariableW(L"ORMACON_DEMO_REPORT", (folder_ / "report.txt").c_str());
        Scenario("");
    }

    const std::filesystem::path& folder() const { return folder_.path; }

    // The elements of a scenario; see scenario.sample.xml.
    void Scenario(const std::string& elements) const {
        const auto path = folder_ / "scenario.xml";
        WriteFileText(path, "<?xml version='1.0' encoding='UTF-8'?><DemoScenario>" + elements + "</DemoScenario>");
        SetEnvironmentVariableW(L"ORMACON_DEMO_SCENARIO", path.c_str());
    }

    // How often the function was called since the library was loaded.
    int Calls(const std::string& function) const {
        const std::string report = FileText(folder_ / "report.txt");
        std::smatch found;
        const bool was_called = std::regex_search(report, found, std::regex("\n" + function + "=(\\d+)"));
        return was_called ? std::stoi(found[1]) : 0;
    }

    // Everything that the library returned was freed, and nothing else was.
    void ExpectMemoryBalanced(const std::string& what = "") const {
        const std::string report = FileText(folder_ / "report.txt");
        EXPECT_TRUE(std::regex_search(report, std::regex("^texts=(\\d+)/\\1 arrays=(\\d+)/\\2 wrong=0\n")))
            << what << report;
    }

private:
    const CTestFolder folder_;
};

}  // namespace test_support
