// One information record of 80 characters, which the operating system has when the call returns. Baselines: a bare
// WriteFile of the same line, and spdlog with the same layout. Also measures composing the line without writing it.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include "benchmarks/work_file.h"
#include "common/logging/component.h"
#include "common/logging/output_sinks.h"
#include "common/logging/log_file.h"
#include "common/logging/logger.h"
#include "common/logging/open_log.h"
#include "common/platform/owned.h"
#include "common/win32.h"

namespace {

constexpr std::string_view text = "Loading configuration library in direct mode: the file of the library is loaded.";
static_assert(text.size() == 80);

platform::unique_file floor_file;
std::string floor_line;
std::shared_ptr<spdlog::logger> peer;

std::string last_line(const std::wstring& path) {
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    std::string line;
    std::string last;
    while (std::getline(file, line)) last = line + "\n";
    return last;
}

std::wstring open_product() {
    const std::wstring path = benchmarks::fresh_work_file(L"Product.log");
    // The limit is checked for each record and never reached.
    logging::open_log(logging::ormacon_tool,
                      {.path = path, .limits = {.log_size = 1ULL << 40, .archive_count = 10}, .switches = {}});
    return path;
}
void close_product() { logging::close_log(); }
void log_product(benchmark::State& state) {
    for (auto _ : state) logging::ormacon_tool.info(text);
}

std::wstring open_floor() {
    const std::wstring path = benchmarks::fresh_work_file(L"Floor.log");
    floor_file.reset(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
    return path;
}
void close_floor() { floor_file.reset(); }
void log_floor(benchmark::State& state) {
    DWORD written = 0;
    for (auto _ : state) {
        WriteFile(floor_file.get(), floor_line.data(), static_cast<DWORD>(floor_line.size()), &written, nullptr);
    }
    if (written != floor_line.size()) state.SkipWithError("the line was not written");
}

class file_of_nothing_t : public logging::receiver::log_file_t {
public:
    file_of_nothing_t() : log_file_t({.log_size = 1ULL << 40, .archive_count = 10}) {}
    const std::wstring& path() const override { return path_; }

private:
    void append(std::string_view lines) override { benchmark::DoNotOptimize(lines.data()); }
    void clear() override {}

    std::wstring path_;
};

void log_nothing(benchmark::State& state) {
    logging::logger_t logger;
    logger.attach(boost::make_shared<file_of_nothing_t>());
    logger.attach(boost::make_shared<logging::receiver::COutputDebugStringLog>());
    for (auto _ : state) logger.log({.text = text});
}

std::wstring open_peer() {
    const std::filesystem::path path = benchmarks::fresh_work_file(L"Peer.log");
    peer = std::make_shared<spdlog::logger>("peer",
                                            std::make_shared<spdlog::sinks::basic_file_sink_mt>(path.string(), true));
    peer->set_pattern("[%d.%m.%Y %H:%M:%S] <%6t> %v");
    peer->flush_on(spdlog::level::trace);
    return path.wstring();
}
void close_peer() { peer.reset(); }
void log_peer(benchmark::State& state) {
    for (auto _ : state) peer->info(text);
}

struct way_t {
    const char* name;
    std::wstring (*open)();
    void (*close)();
    void (*log)(benchmark::State& state);
};
constexpr way_t product{"log/product", open_product, close_product, log_product};
constexpr way_t write_file{"log/write_file", open_floor, close_floor, log_floor};
constexpr way_t spdlog_sink{"log/spdlog", open_peer, close_peer, log_peer};

template <const way_t& way>
void add() {
    for (const int threads : {1, 8}) {
        benchmark::RegisterBenchmark(way.name, way.log)
            ->Setup([](const benchmark::State&) { way.open(); })
            ->Teardown([](const benchmark::State&) { way.close(); })
            ->UseRealTime()
            ->Threads(threads);
    }
}

std::string product_line() {
    const std::wstring path = open_product();
    logging::ormacon_tool.info(text);
    close_product();
    return last_line(path);
}

std::string peer_line() {
    const std::wstring path = open_peer();
    peer->info(text);
    close_peer();
    return last_line(path);
}

}  // namespace

int main(int argc, char** argv) {
    constexpr std::size_t time_stamp_size = 22;
    benchmark::Initialize(&argc, argv);
    floor_line = product_line();
    // The lines must differ only in the time.
    if (floor_line.substr(time_stamp_size) != peer_line().substr(time_stamp_size)) {
        std::cerr << "The layouts differ:\n" << floor_line << peer_line();
        return 1;
    }
    add<product>();
    add<write_file>();
    add<spdlog_sink>();
    benchmark::RegisterBenchmark("log/unwritten", log_nothing);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
