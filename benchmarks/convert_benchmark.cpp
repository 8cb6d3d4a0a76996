// The conversions between UTF-8 and UTF-16. Baselines: one system call into a buffer that is large enough, and the
// floor, which is the two calls and the memory that every conversion needs.
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "common/text/convert.h"
#include "common/win32.h"

namespace {

// Like the log's texts: mostly ASCII, with names in other languages now and then.
std::wstring wide_text(std::size_t size) {
    const std::wstring sample =
        L"Repository [Z\u00fcrich \u6771\u4eac \u0434\u0438\u0441\u043a] of the backup server, path ";
    std::wstring text;
    while (text.size() < size) text += sample;
    text.resize(size);
    return text;
}

void to_utf8_product(benchmark::State& state) {
    const std::wstring source = wide_text(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(text::wide_to_utf8(source));
}

void to_utf8_system(benchmark::State& state) {
    const std::wstring source = wide_text(static_cast<std::size_t>(state.range(0)));
    std::string target(source.size() * 3 + 1, '\0');
    const int length = static_cast<int>(source.size()) + 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(WideCharToMultiByte(CP_UTF8, 0, source.c_str(), length, target.data(),
                                                     static_cast<int>(target.size()), nullptr, nullptr));
        benchmark::ClobberMemory();
    }
    if (target.c_str() != text::wide_to_utf8(source)) state.SkipWithError("the texts differ");
}

void to_utf8_floor(benchmark::State& state) {
    const std::wstring source = wide_text(static_cast<std::size_t>(state.range(0)));
    const int length = static_cast<int>(source.size()) + 1;
    for (auto _ : state) {
        const int size = WideCharToMultiByte(CP_UTF8, 0, source.c_str(), length, nullptr, 0, nullptr, nullptr);
        const auto target = std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(size));
        WideCharToMultiByte(CP_UTF8, 0, source.c_str(), length, target.get(), size, nullptr, nullptr);
        benchmark::DoNotOptimize(target.get());
        benchmark::ClobberMemory();
    }
}

void to_wide_product(benchmark::State& state) {
    const std::string source = text::wide_to_utf8(wide_text(static_cast<std::size_t>(state.range(0))));
    for (auto _ : state) benchmark::DoNotOptimize(text::utf8_to_wide(source));
}

void to_wide_system(benchmark::State& state) {
    const std::string source = text::wide_to_utf8(wide_text(static_cast<std::size_t>(state.range(0))));
    std::wstring target(source.size() + 1, L'\0');
    const int length = static_cast<int>(source.size()) + 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            MultiByteToWideChar(CP_UTF8, 0, source.c_str(), length, target.data(), static_cast<int>(target.size())));
        benchmark::ClobberMemory();
    }
    if (target.c_str() != text::utf8_to_wide(source)) state.SkipWithError("the texts differ");
}

void to_wide_floor(benchmark::State& state) {
    const std::string source = text::wide_to_utf8(wide_text(static_cast<std::size_t>(state.range(0))));
    const int length = static_cast<int>(source.size()) + 1;
    for (auto _ : state) {
        const int size = MultiByteToWideChar(CP_UTF8, 0, source.c_str(), length, nullptr, 0);
        const auto target = std::make_unique_for_overwrite<wchar_t[]>(static_cast<std::size_t>(size));
        MultiByteToWideChar(CP_UTF8, 0, source.c_str(), length, target.get(), size);
        benchmark::DoNotOptimize(target.get());
        benchmark::ClobberMemory();
    }
}

constexpr int long_text = 64 * 1024;

BENCHMARK(to_utf8_product)->Name("convert/product/to_utf8")->Arg(64)->Arg(long_text);
BENCHMARK(to_utf8_system)->Name("convert/system/to_utf8")->Arg(64)->Arg(long_text);
BENCHMARK(to_utf8_floor)->Name("convert/floor/to_utf8")->Arg(64)->Arg(long_text);
BENCHMARK(to_wide_product)->Name("convert/product/to_wide")->Arg(64)->Arg(long_text);
BENCHMARK(to_wide_system)->Name("convert/system/to_wide")->Arg(64)->Arg(long_text);
BENCHMARK(to_wide_floor)->Name("convert/floor/to_wide")->Arg(64)->Arg(long_text);

}  // namespace
