// The wizard's whole repository step, from the answer before it to the question after it, with its library calls, log
// records and output. Also measures only the part that matches numbers and repositories.
#include <chrono>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>

#include "benchmarks/work_file.h"
#include "common/logging/open_log.h"
#include "wizard/config_tool_wizard.h"
#include "wizard/console_device.h"
#include "wizard/repository_selection.h"
#include "common/win32.h"

namespace {

using clock_type = std::chrono::steady_clock;
using conf_tool::RepositoryEntry;

// A user who keeps every setting, saves nothing, and measures the time.
class CTimedUser : public wizard::IConsoleDevice {
public:
    CTimedUser() { wizard::UseConsoleDevice(this); }
    ~CTimedUser() override { wizard::UseConsoleDevice(nullptr); }

    void Write(const std::wstring& text) override {
        if (text.starts_with(L"Enter the number of data streams")) end_ = clock_type::now();
        saving_ = text.starts_with(L"Save configuration?");
    }

    std::wstring ReadLine(bool hidden) override {
        if (hidden) begin_ = clock_type::now();  // the password is the last question before the step
        return saving_ ? L"3" : L"";
    }

    bool IsInteractive() const override { return true; }

    double SecondsOfStep() const { return std::chrono::duration<double>(end_ - begin_).count(); }

private:
    clock_type::time_point begin_;
    clock_type::time_point end_;
    bool saving_ = false;
};

// The log has no size limit: another benchmark measures archiving.
class CLog {
public:
    CLog() {
        logging::open_log(logging::ormacon_tool, {.path = benchmarks::fresh_work_file(L"Repositories.log"),
                                                  .limits = {.log_size = 0, .archive_count = 10},
                                                  .switches = {}});
    }
    ~CLog() { logging::close_log(); }
    CLog(const CLog&) = delete;
    CLog& operator=(const CLog&) = delete;
};

void WholeStep(benchmark::State& state) {
    SetEnvironmentVariableW(L"ORMACON_BENCHMARK_REPOSITORIES", std::to_wstring(state.range(0)).c_str());
    CTimedUser user;
    for (auto _ : state) {
        const CLog log;
        wizard::CConfigToolWizard(boost::make_shared<conf_tool::CConfigToolLibCaller>(conf_tool::CallerMode::Wizard))
            .StartWizard();
        state.SetIterationTime(user.SecondsOfStep());
    }
}

std::vector<RepositoryEntry> Offered(std::size_t count) {
    std::vector<RepositoryEntry> offered;
    for (std::size_t i = 0; i < count; ++i) {
        offered.push_back({L"7b1e9c52-0d4f-4a6e-" + std::to_wstring(1000000 + i),
                           L"Repository " + std::to_wstring(i + 1), 2e13, 1e13, false});
    }
    return offered;
}

void Selection(benchmark::State& state) {
    const std::vector<RepositoryEntry> offered = Offered(static_cast<std::size_t>(state.range(0)));
    std::vector<RepositoryEntry> selected;
    for (std::size_t i = 0; i < offered.size(); i += 10) selected.push_back(offered[i]);
    const CLog log;
    for (auto _ : state) {
        const std::wstring text = wizard::SelectionText(selected, offered);
        if (wizard::SelectRepositories(text, offered, 2).size() != selected.size()) state.SkipWithError("lost some");
    }
}

BENCHMARK(WholeStep)->Name("repositories/step")->RangeMultiplier(10)->Range(1000, 100'000)->UseManualTime();
BENCHMARK(Selection)->Name("repositories/selection")->RangeMultiplier(10)->Range(1000, 100'000);

}  // namespace
