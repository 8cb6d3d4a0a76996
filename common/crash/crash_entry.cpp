#include "common/crash/crash_entry.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <utility>

#include <boost/make_shared.hpp>

#include "common/crash/dump_folder.h"
#include "common/crash/handler_registry.h"
#include "common/crash/legacy_dump_gen.h"
#include "common/crash/minidump_gen.h"
#include "common/crash/out_of_proc_dump_gen.h"
#include "common/encoding/convert.h"
#include "common/exc/raise.h"
#include "common/logging/log_exception.h"
#include "common/logging/logger.h"
#include "common/platform/console.h"
#include "common/platform/guarded_call.h"
#include "common/platform/module.h"
#include "common/platform/path.h"

namespace crash {
namespace {

constexpr unsigned max_dumps = 10;
constexpr std::chrono::milliseconds log_timeout(1000);

const logging::component_t* log_component = nullptr;
const wchar_t* base_name = nullptr;

// Replaced, never changed: the crashed thread may be the one that sets them, and have the loader's lock, which is
// needed to look up the program's folder.
struct folders_t {
    std::wstring dumps;
    std::wstring program;
};
constinit std::atomic<const folders_t*> folders{nullptr};

// What a stage leaves to the later ones. Only one thread at a time runs them.
struct state_t {
    cause_t cause{};
    DWORD logging_thread = 0;
    std::size_t next_stage = 0;
    std::size_t next_generator = 0;
    bool handlers_succeeded = false;
    dump_folder_t folder;                                 // open until the process ends, so that nobody can replace it
    boost::shared_ptr<win32::dump_gen_base_t> generator;  // unless it failed
};

// Whether the step ended without an exception, which is logged.
template <class Step>
bool attempt(const Step& step) noexcept try {
    step();
    return true;
} catch (const std::exception& failure) {
    logging::log_exception(*log_component, failure);
    return false;
}

std::wstring known_folder() { return folders == nullptr ? std::wstring() : folders.load()->dumps; }

void begin(state_t&) { log_component->info("Trying to generate crash dump"); }

void execute_handlers(state_t& state) {
    log_component->info("Executing crash handlers.");
    state.handlers_succeeded = run_handlers(*log_component);
}

void end_handlers(state_t& state) {
    if (state.handlers_succeeded) return log_component->info("Crash handlers were successfully executed.");
    log_component->log(logging::level_warning, "A crash handler has failed.");
}

void prepare_folder(state_t& state) {
    const std::wstring folder = known_folder();
    attempt([&] {
        if (folder.empty()) exc::raise("The folder for crash dumps is unknown.");
        state.folder = open_dump_folder(folder);
        cleanup_dumps(*log_component, folder, max_dumps);
    });
}

// The best one comes first.
boost::shared_ptr<win32::dump_gen_base_t> make_generator(std::size_t number) {
    if (number == 0)
        return boost::make_shared<win32::COutOfProcDumpGen>(*log_component, max_dumps, folders.load()->program);
    if (number == 1) return boost::make_shared<win32::minidump_gen_t>(*log_component);
    return boost::make_shared<win32::legacy_dump_gen_t>(*log_component);
}

bool has_dump(const state_t& state) { return state.generator != nullptr && state.generator->has_dump(); }

// The first success counts.
void try_generator(state_t& state) {
    const std::size_t number = state.next_generator++;
    if (!state.folder.folder || has_dump(state)) return;
    const bool succeeded = attempt([&] {
        state.generator = make_generator(number);
        state.generator->generate(state.cause, platform::join_path(known_folder(), base_name));
    });
    if (!succeeded) state.generator.reset();
}

std::wstring notice(const state_t& state) {
    std::array<wchar_t, 64> begin{};
    std::swprintf(begin.data(), begin.size(), L"The program has crashed with 0x%08X. ",
                  static_cast<unsigned>(state.cause.code));
    const std::wstring folder = known_folder();
    if (has_dump(state)) return begin.data() + (L"The crash dump is in " + folder + L".\r\n");
    return begin.data() + std::wstring(L"No crash dump could be written") +
           (folder.empty() ? L": the log folder is unknown.\r\n" : L".\r\n");
}

// Not through a stream of the process, which another thread may have locked.
void print_notice(state_t& state) {
    const HANDLE target = GetStdHandle(STD_ERROR_HANDLE);
    // The console's cursor may be behind a prompt.
    const std::string line_end = platform::is_console(target) ? "\r\n" : "";
    platform::print(target, line_end + encoding::wide_to_utf8(notice(state)));
}

constexpr void (*stages[])(state_t& state) = {
    begin, execute_handlers, end_handlers, prepare_folder, try_generator, try_generator, try_generator, print_notice,
};

// Never destroyed: the crash may come after the static objects.
union lasting_t {
    state_t state{};
    ~lasting_t() {}  // NOLINT(modernize-use-equals-default): the default would be deleted
} process;

}  // namespace

void set_names(const logging::component_t& component, const wchar_t* dump_base_name) noexcept {
    log_component = &component;
    base_name = dump_base_name;
}

void set_dump_folder(const std::wstring& folder) {
    folders = new folders_t{folder, platform::parent_of(platform::program_path())};
}

void handle_crash(const cause_t& cause) noexcept {
    state_t& state = process.state;
    state.cause = cause;
    platform::abandon_guarded_call();
    // Once for each thread that handles the crash: the one before may be the one that keeps the log's lock.
    const DWORD self = GetCurrentThreadId();
    if (std::exchange(state.logging_thread, self) != self) {
        logging::process_logger().seize(cause.thread_id, log_timeout);
    }
    while (state.next_stage < std::size(stages)) stages[state.next_stage++](state);
}

}  // namespace crash
