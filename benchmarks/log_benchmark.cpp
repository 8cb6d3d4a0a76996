// One information record of 80 characters, which the operating system has when the call returns. Baselines: a bare
// WriteFile of the same line, and spdlog with the same layout.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include "benchmarks/work_file.h"
#include "common/logging/component.h"
#include "common/logging/open_log.h"
#include "common/platform/owned.h"
#include "common/win32.h"

namespace {

constexpr std::string_view text = "Loading configuration library in direct mode: the file of the library is loaded.";
static_assert(text.size() == 80);

constexpr logging::component_t component("benchmark");

platform::unique_file floor_file;
std::string floor_line;
std::shared_ptr<spdlog::logger> peer;

std::wstring open_peer() {
    const std::filesystem::path path = benchmarks::fresh_work_file(L"Peer.log");
    peer = std::make_shared<spdlog::logger>("peer",
                                            std::make_shared<spdlog::sinks::basic_file_sink_mt>(path.string(), true));
    peer->set_pattern("[%d.%m.%Y %H:%M:%S] <%6t> %v");
    peer->flush_on(spdlog::level::trace);
    return path.wstring();
}

std::string last_line(const std::wstring& path) {
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    std::string line;
    std::string last;
    while (std::getline(file, line)) last = line + "\n";
    return last;
}

void log_product(benchmark::State& state) {
    for (auto _ : state) component.info(text);
}

void log_floor(benchmark::State& state) {
    DWORD written = 0;
    for (auto _ : state) {
        WriteFile(floor_file.get(), floor_line.data(), static_cast<DWORD>(floor_line.size()), &written, nullptr);
    }
    if (written != floor_line.size()) state.SkipWithError("the line was not written");
}

void log_peer(benchmark::State& state) {
    for (auto _ : state) peer->info(text);
}

BENCHMARK(log_product)->Name("log/product")->UseRealTime()->Threads(1)->Threads(8);
BENCHMARK(log_floor)->Name("log/write_file")->UseRealTime()->Threads(1)->Threads(8);
BENCHMARK(log_peer)->Name("log/spdlog")->UseRealTime()->Threads(1);

}  // namespace

int main(int argc, char** argv) {
    constexpr std::size_t time_stamp_size = 22;
    benchmark::Initialize(&argc, argv);
    floor_file.reset(CreateFileW(benchmarks::fresh_work_file(L"Floor.log").c_str(), GENERIC_WRITE, FILE_SHARE_READ,
                                 nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    const std::wstring product_path = benchmarks::fresh_work_file(L"Product.log");
    // The limit is checked for each record and never reached.
    logging::open_log(component,
                      {.path = product_path, .limits = {.log_size = 1ULL << 40, .archive_count = 10}, .switches = {}});
    component.info(text);
    floor_line = last_line(product_path);
    const std::wstring peer_path = open_peer();
    peer->info(text);
    if (floor_line.substr(time_stamp_size) != last_line(peer_path).substr(time_stamp_size)) {
        std::cerr << "The lines differ in more than the time:\n" << floor_line << last_line(peer_path);
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
