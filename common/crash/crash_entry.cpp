#include "common/crash/crash_entry.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <utility>

#include "common/crash/dump_folder.h"
#include "common/crash/handler_registry.h"
#include "common/exc/raise.h"
#include "common/logging/crash_logging.h"
#include "common/logging/log_exception.h"
#include "common/platform/console.h"
#include "common/platform/path.h"
#include "common/text/convert.h"

namespace crash {
namespace {

constexpr unsigned most_dumps = 10;
constexpr const wchar_t* base_name = L"Ormacon_crash";
constexpr std::chrono::milliseconds longest_log_wait(1000);

// Replaced, never changed: the crashed thread may be the one that sets it.
constinit std::atomic<const std::wstring*> dump_folder{nullptr};

// What a stage leaves to the later ones. Only one thread at a time runs them.
std::size_t next_stage = 0;
DWORD logging_thread = 0;
std::atomic<DWORD> handlers_thread{0};
bool handlers_succeeded = false;
bool is_folder_ready = false;
bool is_dump_written = false;

// Whether the step ended without an exception, which is logged.
template <class Step>
bool attempt(const Step& step) noexcept try {
    step();
    return true;
} catch (const std::exception& failure) {
    logging::log_exception(logging::ormacon_tool, failure);
    return false;
}

std::wstring known_folder() {
    const std::wstring* const folder = dump_folder;
    return folder == nullptr ? std::wstring() : *folder;
}

void begin(const failure_t&) { logging::ormacon_tool.info("Trying to generate crash dump"); }

void execute_handlers(const failure_t&) {
    logging::ormacon_tool.info("Executing crash handlers.");
    handlers_thread = GetCurrentThreadId();
    handlers_succeeded = run_handlers();
}

void end_handlers(const failure_t&) {
    handlers_thread = 0;
    if (handlers_succeeded) {
        logging::ormacon_tool.info("Crash handlers were successfully executed.");
    } else {
        logging::ormacon_tool.log(logging::level_warning, "A crash handler has failed.");
    }
}

void prepare_folder(const failure_t&) {
    const std::wstring folder = known_folder();
    is_folder_ready = attempt([&] {
        if (folder.empty()) exc::raise("The folder for crash dumps is unknown.");
        // Open until the process ends, so that nobody can replace it.
        open_dump_folder(folder).release();
    });
    if (is_folder_ready) attempt([&] { cleanup_dumps(folder, most_dumps); });
}

// The generators come in the order of their worth; the first success counts.
template <class Generator, auto... arguments>
void write_dump(const failure_t& failure) {
    if (!is_folder_ready || is_dump_written) return;
    // A report that crashes is kept as far as it got.
    is_dump_written = std::is_same_v<Generator, win32::legacy_dump_gen_t>;
    is_dump_written =
        attempt([&] { Generator(arguments...).generate(failure, platform::join_path(known_folder(), base_name)); });
}

std::wstring notice(std::uint32_t code) {
    std::array<wchar_t, 64> begin{};
    std::swprintf(begin.data(), begin.size(), L"The program has crashed with 0x%08X. ", code);
    const std::wstring folder = known_folder();
    if (is_dump_written) return begin.data() + (L"The crash dump is in " + folder + L".\r\n");
    return begin.data() + std::wstring(L"No crash dump could be written") +
           (folder.empty() ? L": the log folder is unknown.\r\n" : L".\r\n");
}

// Not through a stream of the process, which another thread may have locked.
void print_notice(const failure_t& failure) {
    const std::wstring line = notice(failure.code);
    const HANDLE target = GetStdHandle(STD_ERROR_HANDLE);
    // The console's cursor may be behind a prompt.
    if (platform::write_console(target, L"\r\n" + line)) return;
    const std::string in_file = text::wide_to_utf8(line);
    DWORD written = 0;
    WriteFile(target, in_file.data(), static_cast<DWORD>(in_file.size()), &written, nullptr);
}

using stage_t = void (*)(const failure_t& failure);

constexpr stage_t stages[] = {
    begin,
    execute_handlers,
    end_handlers,
    prepare_folder,
    write_dump<win32::COutOfProcDumpGen, most_dumps>,
    write_dump<win32::minidump_gen_t>,
    write_dump<win32::legacy_dump_gen_t>,
    print_notice,
};

}  // namespace

void set_dump_folder(const std::wstring& folder) { dump_folder = new std::wstring(folder); }

void handle_crash(const failure_t& failure) noexcept {
    // Once for each thread that handles the crash: the one before may be the one that keeps the log's lock.
    const DWORD self = GetCurrentThreadId();
    if (std::exchange(logging_thread, self) != self) {
        logging::begin_crash_logging(failure.thread_id, longest_log_wait);
    }
    while (next_stage < std::size(stages)) stages[next_stage++](failure);
}

bool is_running_handlers() noexcept { return handlers_thread == GetCurrentThreadId(); }

}  // namespace crash
