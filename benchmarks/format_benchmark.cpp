// format_message with two arguments, against the formatters of fmt and Boost with the format known at run time.
#include <string>
#include <string_view>

#include <benchmark/benchmark.h>
#include <boost/format.hpp>
#include <fmt/format.h>

#include "common/exc/format_message.h"

namespace {

// One sentence of the log, in the three notations.
struct sentence_t {
    std::string numbered;
    std::string braced;
    std::string boost_numbered;
    std::string first;
    std::string second;
};

const sentence_t short_sentence{"Map backup results [%1] [%2]", "Map backup results [{}] [{}]",
                                "Map backup results [%1%] [%2%]", "0", "The imported backup is mapped."};
const sentence_t long_sentence{
    "Path to executable [%1] is symlink to [%2]", "Path to executable [{}] is symlink to [{}]",
    "Path to executable [%1%] is symlink to [%2%]", "C:\\app\\oracle\\product\\19.0.0\\dbhome_1\\bin\\Ormacon.exe",
    "C:\\Program Files\\Tovak\\Tovak Plug-in for Oracle RMAN\\Ormacon.exe"};

std::string by_product(const sentence_t& sentence) {
    return exc::format_message(sentence.numbered, {sentence.first, sentence.second});
}

std::string by_fmt(const sentence_t& sentence) {
    return fmt::vformat(sentence.braced, fmt::make_format_args(sentence.first, sentence.second));
}

std::string by_boost(const sentence_t& sentence) {
    return (boost::format(sentence.boost_numbered) % sentence.first % sentence.second).str();
}

using formatter_t = std::string (*)(const sentence_t& sentence);

template <formatter_t format>
void run(benchmark::State& state, const sentence_t& sentence) {
    if (format(sentence) != by_fmt(sentence)) state.SkipWithError("the texts differ");
    for (auto _ : state) benchmark::DoNotOptimize(format(sentence));
}

template <formatter_t format>
void add(const std::string& name) {
    benchmark::RegisterBenchmark(("format/" + name + "/short").c_str(), run<format>, short_sentence);
    benchmark::RegisterBenchmark(("format/" + name + "/long").c_str(), run<format>, long_sentence);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    add<by_product>("product");
    add<by_fmt>("fmt");
    add<by_boost>("boost");
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
