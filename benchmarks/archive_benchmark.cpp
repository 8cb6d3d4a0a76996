// Archiving a log. Baseline: one pass of zlib's deflate at the same level over the same bytes in memory.
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <zlib.h>

#include "benchmarks/work_file.h"
#include "common/logging/log_archives.h"
#include "common/win32.h"

#include <psapi.h>

namespace {

constexpr std::size_t mebibyte = 1024 * 1024;

// Lines like those of a real run, with values that change from line to line.
std::string mebibyte_of_log() {
    std::string text;
    for (unsigned random = 1; text.size() < mebibyte; random = random * 1664525U + 1013904223U) {
        text += "[21.11.2026 03:15:" + std::to_string(10 + (random >> 16) % 50) + "] <   220> ";
        const std::string number = std::to_string(random >> 12);
        text += random >> 31 == 0 ? "Calling SetHost function, host = [server" + number + ".corp.example]\r\n"
                                  : "Print to console [" + number.substr(0, 2) + ". Repository " + number + "]\r\n";
    }
    text.resize(mebibyte);
    return text;
}

// The most memory that the process has used so far. The sizes are measured in ascending order.
double peak_memory() {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return static_cast<double>(counters.PeakWorkingSetSize);
}

void archive_product(benchmark::State& state) {
    const std::wstring path = benchmarks::fresh_work_file(L"Archived.log");
    std::ofstream file(std::filesystem::path(path), std::ios::binary);
    for (int i = 0; i < state.range(0); ++i) file << mebibyte_of_log();
    file.close();
    for (auto _ : state) logging::archive_log(path, static_cast<std::size_t>(state.range(0)) * mebibyte, 10);
    state.counters["memory"] = peak_memory();
}

void archive_deflate(benchmark::State& state) {
    std::string text;
    for (int i = 0; i < state.range(0); ++i) text += mebibyte_of_log();
    std::vector<unsigned char> target(compressBound(static_cast<uLong>(text.size())));
    for (auto _ : state) {
        auto size = static_cast<uLong>(target.size());
        const int result = compress2(target.data(), &size, reinterpret_cast<const unsigned char*>(text.data()),
                                     static_cast<uLong>(text.size()), Z_DEFAULT_COMPRESSION);
        if (result != Z_OK) state.SkipWithError("deflate failed");
        benchmark::DoNotOptimize(size);
    }
}

BENCHMARK(archive_product)->Name("archive/product")->Arg(1)->Arg(15)->Arg(60)->UseRealTime();
BENCHMARK(archive_deflate)->Name("archive/deflate")->Arg(15)->UseRealTime();

}  // namespace
