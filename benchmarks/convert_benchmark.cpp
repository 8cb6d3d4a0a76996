// The conversions between UTF-8 and UTF-16. Baseline: the two calls and the memory that every conversion needs.
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "common/encoding/convert.h"
#include "common/win32.h"

namespace {

// Like the log's texts: mostly ASCII, with names in other languages now and then. 64 characters.
const std::wstring wide =
    L"Repository [Z\u00fcrich \u6771\u4eac \u0434\u0438\u0441\u043a] of the backup server, path [/vol/b].";
const std::string utf8 = encoding::wide_to_utf8(wide);
const int wide_size = static_cast<int>(wide.size()) + 1;  // the terminating null is converted, too
const int utf8_size = static_cast<int>(utf8.size()) + 1;

void to_utf8_product(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(encoding::wide_to_utf8(wide));
}

void to_utf8_floor(benchmark::State& state) {
    for (auto _ : state) {
        const int size = WideCharToMultiByte(CP_UTF8, 0, wide.c_str(), wide_size, nullptr, 0, nullptr, nullptr);
        const auto target = std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(size));
        WideCharToMultiByte(CP_UTF8, 0, wide.c_str(), wide_size, target.get(), size, nullptr, nullptr);
        benchmark::DoNotOptimize(target.get());
    }
}

void to_wide_product(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(encoding::utf8_to_wide(utf8));
}

void to_wide_floor(benchmark::State& state) {
    for (auto _ : state) {
        const int size = MultiByteToWideChar(CP_UTF8, 0, utf8.c_str(), utf8_size, nullptr, 0);
        const auto target = std::make_unique_for_overwrite<wchar_t[]>(static_cast<std::size_t>(size));
        MultiByteToWideChar(CP_UTF8, 0, utf8.c_str(), utf8_size, target.get(), size);
        benchmark::DoNotOptimize(target.get());
    }
}

BENCHMARK(to_utf8_product)->Name("convert/product/to_utf8");
BENCHMARK(to_utf8_floor)->Name("convert/floor/to_utf8");
BENCHMARK(to_wide_product)->Name("convert/product/to_wide");
BENCHMARK(to_wide_floor)->Name("convert/floor/to_wide");

}  // namespace
