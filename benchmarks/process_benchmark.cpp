// --help and --show-config as whole processes, from CreateProcess to the end of the process. Baseline: the minimal
// program.
#include <string>

#include <benchmark/benchmark.h>

#include "common/platform/module.h"
#include "common/platform/path.h"
#include "common/platform/owned.h"
#include "common/win32.h"

namespace {

bool run_to_end(std::wstring command_line, HANDLE output) {
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = start.hStdError = output;
    PROCESS_INFORMATION created{};
    if (!CreateProcessW(nullptr, command_line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &created)) {
        return false;
    }
    const platform::unique_handle thread(created.hThread);
    const platform::unique_handle process(created.hProcess);
    WaitForSingleObject(process.get(), INFINITE);
    DWORD status = 1;
    return GetExitCodeProcess(process.get(), &status) && status == 0;
}

void run(benchmark::State& state, const wchar_t* program, const wchar_t* option) {
    const std::wstring folder = platform::parent_of(platform::program_path());
    const std::wstring command_line = L"\"" + folder + L"\\" + program + L"\" " + option;
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    const platform::unique_file output(
        CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_WRITE, &inherited, OPEN_EXISTING, 0, nullptr));
    for (auto _ : state) {
        if (!run_to_end(command_line, output.get())) state.SkipWithError("the program failed");
    }
}

BENCHMARK_CAPTURE(run, product_help, L"Ormacon.exe", L"--help")->UseRealTime();
BENCHMARK_CAPTURE(run, minimal_help, L"minimal_program.exe", L"--help")->UseRealTime();
BENCHMARK_CAPTURE(run, product_show_config, L"Ormacon.exe", L"--show-config")->UseRealTime();
BENCHMARK_CAPTURE(run, minimal_show_config, L"minimal_program.exe", L"--show-config")->UseRealTime();

}  // namespace
