// --help and --show-config as whole processes, from CreateProcess to the end of the process. Baseline: the minimal
// program.
#include <string>

#include <benchmark/benchmark.h>

#include "common/platform/module.h"
#include "common/platform/path.h"
#include "common/platform/owned.h"
#include "common/win32.h"

namespace {

platform::unique_file open_nowhere() {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return platform::unique_file(
        CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_WRITE, &inherited, OPEN_EXISTING, 0, nullptr));
}

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

void run_process(benchmark::State& state, const wchar_t* program, const wchar_t* option) {
    const std::wstring folder = platform::parent_of(platform::program_path());
    const std::wstring command_line = L"\"" + folder + L"\\" + program + L"\" " + option;
    const platform::unique_file output = open_nowhere();
    for (auto _ : state) {
        if (!run_to_end(command_line, output.get())) state.SkipWithError("the program failed");
    }
}

void add(const char* name, const wchar_t* program, const wchar_t* option) {
    benchmark::RegisterBenchmark(name, run_process, program, option)->Unit(benchmark::kMillisecond)->UseRealTime();
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    add("process/product/help", L"Ormacon.exe", L"--help");
    add("process/minimal/help", L"minimal_program.exe", L"--help");
    add("process/product/show-config", L"Ormacon.exe", L"--show-config");
    add("process/minimal/show-config", L"minimal_program.exe", L"--show-config");
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
