// format_message with two arguments. Baseline: fmt with a format known only at run time.
#include <string>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "common/exc/format_message.h"

namespace {

const std::string numbered = "Path to executable [%1] is symlink to [%2]";
const std::string braced = "Path to executable [{}] is symlink to [{}]";
const std::string first = "C:\\app\\oracle\\product\\19.0.0\\dbhome_1\\bin\\Ormacon.exe";
const std::string second = "C:\\Program Files\\Tovak\\Tovak Plug-in for Oracle RMAN\\Ormacon.exe";

std::string by_product() { return exc::format_message(numbered, {first, second}); }
std::string by_fmt() { return fmt::vformat(braced, fmt::make_format_args(first, second)); }

void format_product(benchmark::State& state) {
    if (by_product() != by_fmt()) state.SkipWithError("the texts differ");
    for (auto _ : state) benchmark::DoNotOptimize(by_product());
}

void format_fmt(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(by_fmt());
}

BENCHMARK(format_product)->Name("format/product");
BENCHMARK(format_fmt)->Name("format/fmt");

}  // namespace
