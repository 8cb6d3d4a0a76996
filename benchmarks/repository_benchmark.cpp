// The wizard's whole repository step, from the answer before it to the question after it, with its library calls, log
// records and output.
#include <chrono>
#include <string>

#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>

#include "benchmarks/work_file.h"
#include "common/logging/open_log.h"
#include "conf_tool/log_component.h"
#include "wizard/config_tool_wizard.h"
#include "wizard/console.h"
#include "common/win32.h"

namespace {

using clock_type = std::chrono::steady_clock;

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

void WholeStep(benchmark::State& state) {
    SetEnvironmentVariableW(L"ORMACON_BENCHMARK_REPOSITORIES", std::to_wstring(state.range(0)).c_str());
    CTimedUser user;
    for (auto _ : state) {
        // The log has no size limit: another benchmark measures archiving.
        logging::open_log(conf_tool::ormacon_tool, {.path = benchmarks::fresh_work_file(L"Repositories.log"),
                                                    .limits = {.log_size = 0, .archive_count = 10},
                                                    .switches = {}});
        wizard::CConfigToolWizard(boost::make_shared<conf_tool::CConfigToolLibCaller>(conf_tool::CallerMode::Wizard))
            .StartWizard();
        logging::close_log();
        state.SetIterationTime(user.SecondsOfStep());
    }
}

BENCHMARK(WholeStep)->Name("repositories")->RangeMultiplier(10)->Range(1000, 100'000)->UseManualTime();

}  // namespace
