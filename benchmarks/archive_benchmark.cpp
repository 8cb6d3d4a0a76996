// Archiving a log. Baseline: one pass of zlib's deflate at the same level over the same bytes in memory.
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <zlib.h>

#include "benchmarks/counted_memory.h"
#include "benchmarks/work_file.h"
#include "common/logging/log_archives.h"

namespace {

constexpr std::size_t mebibyte = 1024 * 1024;

// Lines like those of a real run, with values that change from line to line.
std::string log_text(std::size_t size) {
    std::string text;
    unsigned random = 1;
    for (unsigned line = 0; text.size() < size; ++line) {
        random = random * 1664525U + 1013904223U;
        const std::string number = std::to_string(random >> 12);
        const char* second = line % 600 < 100 ? "0" : "";
        text += "[21.11.2026 03:1" + std::to_string(line % 10) + ":" + second + std::to_string(line % 600 / 10) +
                "] <  " + std::to_string(100 + random % 900) + "> ";
        switch (random >> 30) {
            case 0:
                text += "Calling SetHost function, host = [server" + number + ".corp.example]";
                break;
            case 1:
                text += "Print to console [" + std::to_string(line % 40) + ". Repository " + number + "]";
                break;
            case 2:
                text += "ConfigToolLibCaller received repos id=[" + number + "] name=[Branch Office " + number + "]";
                break;
            default:
                text += "WARN|Failed to call SetPort function";
        }
        text += "\r\n";
    }
    text.resize(size);
    return text;
}

void archive_product(benchmark::State& state) {
    const std::size_t size = static_cast<std::size_t>(state.range(0)) * mebibyte;
    const std::wstring path = benchmarks::fresh_work_file(L"Archived.log");
    std::ofstream(std::filesystem::path(path), std::ios::binary) << log_text(size);
    benchmarks::restart_peak();
    for (auto _ : state) logging::archive_log(path, size, 10);
    state.counters["memory"] = static_cast<double>(benchmarks::peak_growth());
}

void archive_deflate(benchmark::State& state) {
    const std::string text = log_text(static_cast<std::size_t>(state.range(0)) * mebibyte);
    std::vector<unsigned char> target(compressBound(static_cast<uLong>(text.size())));
    for (auto _ : state) {
        auto size = static_cast<uLong>(target.size());
        const int result = compress2(target.data(), &size, reinterpret_cast<const unsigned char*>(text.data()),
                                     static_cast<uLong>(text.size()), Z_DEFAULT_COMPRESSION);
        if (result != Z_OK) state.SkipWithError("deflate failed");
        benchmark::DoNotOptimize(size);
    }
}

BENCHMARK(archive_product)
    ->Name("archive/product")
    ->Arg(1)
    ->Arg(15)
    ->Arg(60)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(archive_deflate)->Name("archive/deflate")->Arg(15)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
