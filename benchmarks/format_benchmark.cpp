// format_message with two arguments. Baselines: fmt and Boost with a format known only at run time, and the floor,
// which joins the known pieces of the text in memory of the right size.
#include <string>

#include <benchmark/benchmark.h>
#include <boost/format.hpp>
#include <fmt/format.h>

#include "common/exc/format_message.h"

namespace {

// One log sentence, in pieces and in the three notations.
struct sentence_t {
    std::string before;
    std::string first;
    std::string between;
    std::string second;
    std::string behind;
    std::string numbered = before + "%1" + between + "%2" + behind;
    std::string braced = before + "{}" + between + "{}" + behind;
    std::string boost_numbered = before + "%1%" + between + "%2%" + behind;
};

const sentence_t short_sentence{"Map backup results [", "0", "] [", "The imported backup is mapped.", "]"};
const sentence_t long_sentence{"Path to executable [", "C:\\app\\oracle\\product\\19.0.0\\dbhome_1\\bin\\Ormacon.exe",
                               "] is symlink to [",
                               "C:\\Program Files\\Tovak\\Tovak Plug-in for Oracle RMAN\\Ormacon.exe", "]"};

std::string by_product(const sentence_t& sentence) {
    return exc::format_message(sentence.numbered, {sentence.first, sentence.second});
}

std::string by_fmt(const sentence_t& sentence) {
    return fmt::vformat(sentence.braced, fmt::make_format_args(sentence.first, sentence.second));
}

std::string by_boost(const sentence_t& sentence) {
    return (boost::format(sentence.boost_numbered) % sentence.first % sentence.second).str();
}

std::string by_joining(const sentence_t& sentence) {
    const auto& [before, first, between, second, behind, numbered, braced, boost_numbered] = sentence;
    std::string text;
    text.reserve(before.size() + first.size() + between.size() + second.size() + behind.size());
    text.append(before).append(first).append(between).append(second).append(behind);
    return text;
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
    add<by_joining>("joined");
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
