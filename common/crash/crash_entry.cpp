#include "common/crash/crash_entry.h"

#include <atomic>
#include <chrono>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include "common/crash/crash_notice.h"
#include "common/crash/dump_folder.h"
#include "common/crash/handler_registry.h"
#include "common/crash/legacy_dump_gen.h"
#include "common/crash/minidump_gen.h"
#include "common/crash/out_of_proc_dump_gen.h"
#include "common/logging/crash_logging.h"
#include "common/logging/log_exception.h"
#include "common/platform/path.h"

namespace crash {
namespace {

using generator_t = boost::shared_ptr<win32::dump_gen_base_t>;

constexpr unsigned most_dumps = 10;
constexpr const wchar_t* base_name = L"Ormacon_crash";
constexpr std::chrono::milliseconds longest_log_wait(1000);

// Replaced, never changed: the crashed thread may be the one that sets it.
constinit std::atomic<const std::wstring*> dump_folder{nullptr};

// The best one first.
constexpr generator_t (*generator_factories[])() = {
    [] { return generator_t(boost::make_shared<win32::COutOfProcDumpGen>(most_dumps)); },
    [] { return generator_t(boost::make_shared<win32::minidump_gen_t>()); },
    [] { return generator_t(boost::make_shared<win32::legacy_dump_gen_t>()); },
};

// Whether the step came to its end; what it raised is logged.
template <class Step>
bool attempt(const Step& step) noexcept try {
    step();
    return true;
} catch (const std::exception& failure) {
    logging::log_exception(logging::ormacon_tool, failure);
    return false;
}

void run_logged_handlers() noexcept {
    logging::ormacon_tool.info("Executing crash handlers.");
    if (run_handlers()) logging::ormacon_tool.info("Crash handlers were successfully executed.");
}

bool write_dump(const failure_t& failure, const std::wstring& folder) noexcept {
    for (const auto& create : generator_factories) {
        if (attempt([&] { create()->generate(failure, folder + L"\\" + base_name); })) return true;
    }
    return false;
}

// The folder of the dump; empty when there is none.
std::wstring generate_dump(const failure_t& failure) {
    const std::wstring* const set = dump_folder;
    const std::wstring shown = set == nullptr ? L"Dumps" : *set;
    const std::wstring folder = platform::system_path(shown);
    attempt([&] { platform::create_directories(folder); });
    attempt([&] { cleanup_dumps(folder, most_dumps); });
    return write_dump(failure, folder) ? shown : std::wstring();
}

}  // namespace

void set_dump_folder(const std::wstring& folder) { dump_folder = new std::wstring(folder); }

void handle_crash(const failure_t& failure) noexcept {
    logging::begin_crash_logging(failure.thread_id, longest_log_wait);
    logging::ormacon_tool.info("Trying to generate crash dump");
    run_logged_handlers();
    std::wstring dumped_to;
    attempt([&] { dumped_to = generate_dump(failure); });
    attempt([&] { tell_crash(failure.code, dumped_to); });
}

}  // namespace crash
