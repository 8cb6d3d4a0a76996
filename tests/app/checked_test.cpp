#include <cstdlib>
#include <iostream>

#include <gtest/gtest.h>

#include "common/platform/module.h"
#include "tests/support/demo_host.h"

namespace fs = std::filesystem;

// The scripts that show success in the exit status, with this program in Ormacon's place: see main.
static void ExpectSuccessInTheExitStatus(const std::wstring& starter, const std::wstring& script) {
    const test_support::CTestFolder around;
    const fs::path folder = around / L"Pr\u00fcf & (x86)", output = around / "output.txt";
    const auto run = [&](const std::wstring& words) {  // the exit status, a colon, and what was printed
        const std::wstring line = starter + L"\"" + (folder / script).wstring() + L"\" " + words;
        const int status = _wsystem((L"\"" + line + L" >\"" + output.wstring() + L"\" 2>&1\"").c_str());
        return std::to_string(status) + ": " + test_support::FileText(output);
    };
    fs::create_directory(folder);
    fs::copy_file(test_support::BesideProgram(script.c_str()), folder / script);
    EXPECT_EQ(run(L"--set-port 10006").substr(0, 37), "3: Ormacon.exe is not in the folder \"");
    fs::copy_file(platform::program_path(), folder / "Ormacon.exe");
    const std::string ended = "Ormacon.exe crashed, was ended, or could not be started. Its exit status is ";
    const std::pair<std::wstring, std::string> cases[] = {
        {L"--set-port 0", "0: "},
        {L"--set-port=10006", "0: "},
        {L"--set-credentials 0 \"\"", "0: \r\n"},  // the line end after a hidden password
        {L"--set-host 0 \"Failed to a & (b)\"", "1: Failed to a & (b)\r\n"},
        {L"--uninstall -1073741510 text", "2: text\r\nOrmacon.exe was stopped at the keyboard.\r\n"},
        {L"--set-parallelism -1073741819", "3: " + ended + "-1073741819.\r\n"},
        {L"--uninstall 5", "3: " + ended + "5.\r\n"}};
    for (const auto& [words, expected] : cases) EXPECT_EQ(run(words), expected) << fs::path(words);
    for (const wchar_t* words : {L"", L"--map-backup 0", L"--wizard 0", L"--set 0"}) {
        EXPECT_EQ(run(words).substr(0, 24), "1: ormacon-checked runs ") << fs::path(words);
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 2) << "something is left behind";
}

TEST(Checked, TheBatchFileShowsSuccessInTheExitStatus) { ExpectSuccessInTheExitStatus(L"", L"ormacon-checked.cmd"); }

TEST(Checked, ThePowerShellScriptShowsSuccessInTheExitStatus) {
    const std::wstring starter = L"powershell -NoProfile -ExecutionPolicy Bypass ";
    if (_wsystem((starter + L"-Command exit 7").c_str()) != 7) GTEST_SKIP() << "there is no PowerShell";
    ExpectSuccessInTheExitStatus(starter + L"-File ", L"ormacon-checked.ps1");
}

// As Ormacon.exe, it prints its third argument as a line and ends with the second one, or 0.
int main(int count, char** words) {
    if (fs::path(platform::program_path()).filename() == "Ormacon.exe") {
        if (count > 3) std::cout << words[3] << std::endl;
        return count > 2 ? std::stoi(words[2]) : 0;
    }
    testing::InitGoogleTest(&count, words);
    return RUN_ALL_TESTS();
}
