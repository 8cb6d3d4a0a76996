// --help and --show-config as whole processes, from CreateProcess to the end of the process. Baseline: the minimal
// program, which is run after each run of the product, so that a machine whose speed changes slows both.
#include <chrono>
#include <string>

#include <benchmark/benchmark.h>

#include "common/platform/module.h"
#include "common/platform/path.h"
#include "common/platform/owned.h"
#include "common/text/convert.h"
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

class program_t {
public:
    program_t(const wchar_t* name, const wchar_t* option)
        : command_line_(L"\"" + platform::join_path(platform::parent_of(platform::program_path()), name) + L"\" " +
                        option) {}

    // Returns how many seconds the program took, or a negative number if it failed.
    double run() const {
        const auto start = std::chrono::steady_clock::now();
        if (!run_to_end(command_line_, output_.get())) return -1;
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

private:
    std::wstring command_line_;
    platform::unique_file output_ = open_nowhere();
};

void run_both(benchmark::State& state, const wchar_t* option) {
    const program_t product(L"Ormacon.exe", option);
    const program_t minimal(L"minimal_program.exe", option);
    double baseline = 0;
    for (auto _ : state) {
        const double seconds = product.run();
        const double least = minimal.run();
        if (seconds < 0 || least < 0) return state.SkipWithError("the program failed");
        state.SetIterationTime(seconds);
        baseline += least;
    }
    state.counters["baseline_seconds"] = benchmark::Counter(baseline, benchmark::Counter::kAvgIterations);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    for (const wchar_t* option : {L"--help", L"--show-config"}) {
        const std::string name = "process/" + text::wide_to_utf8(option + 2);
        benchmark::RegisterBenchmark(name.c_str(), run_both, option)->UseManualTime()->Unit(benchmark::kMillisecond);
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
