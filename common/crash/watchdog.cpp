#include "common/crash/watchdog.h"

#include <algorithm>
#include <atomic>

#include "common/platform/module.h"
#include "common/platform/owned.h"

namespace crash {
namespace {

constexpr DWORD handling_timeout = 60'000;  // milliseconds
constexpr SIZE_T watch_stack = 16'384;
constexpr DWORD start_timeout = 1000;  // milliseconds

// Never closed: a crash may come at any time until the process is gone.
HANDLE started = nullptr;
HANDLE main_thread = nullptr;
DWORD thread_id = 0;
LONG(NTAPI* resume_process)(HANDLE process) = nullptr;
std::atomic<std::uint32_t> status{0};
std::atomic<ULONGLONG> end{0};
std::atomic<HANDLE> awaited{nullptr};

void grant(ULONGLONG milliseconds) { end = GetTickCount64() + milliseconds; }

bool has_ended(HANDLE process) { return process != nullptr && WaitForSingleObject(process, 0) != WAIT_TIMEOUT; }

// The handling thread does not react to the end of the process that it waits for: it is suspended, perhaps several
// times, and each call takes back one.
void resume() {
    if (resume_process != nullptr) resume_process(GetCurrentProcess());
    end = std::min<ULONGLONG>(end, GetTickCount64() + handling_timeout);
}

// For Wine, see prepare_watchdog().
void end_with_main_thread() {
    DWORD code = 0;
    GetExitCodeThread(main_thread, &code);
    TerminateProcess(GetCurrentProcess(), code == 0 ? 1 : code);
}

// Only calls that need no lock of the process: a thread that hangs may have any of them.
DWORD WINAPI watch(void* running) {
    SetEvent(running);
    const HANDLE events[] = {started, main_thread};
    if (WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0 + 1) end_with_main_thread();
    for (; GetTickCount64() < end; Sleep(500)) {
        if (has_ended(awaited)) resume();
    }
    TerminateProcess(GetCurrentProcess(), status);
    return 0;
}

}  // namespace

HANDLE start_lasting_thread(LPTHREAD_START_ROUTINE function, SIZE_T stack_size) noexcept {
    // Never closed: a thread that comes too late sets it, too.
    const HANDLE running = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const HANDLE thread = CreateThread(nullptr, stack_size, function, running, 0, nullptr);
    if (thread != nullptr) WaitForSingleObject(running, start_timeout);
    return thread;
}

void prepare_watchdog() noexcept {
    started = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    resume_process =
        platform::find_function<decltype(resume_process)>(GetModuleHandleW(L"ntdll.dll"), "NtResumeProcess");
    main_thread = OpenThread(SYNCHRONIZE | THREAD_QUERY_LIMITED_INFORMATION, FALSE, GetCurrentThreadId());
    if (started == nullptr || main_thread == nullptr) return;
    const platform::unique_handle thread(start_lasting_thread(&watch, watch_stack));
    thread_id = GetThreadId(thread.get());
}

void start_watchdog(std::uint32_t exit_status) noexcept {
    ULONGLONG never = 0;
    if (end.compare_exchange_strong(never, GetTickCount64() + handling_timeout)) status = exit_status;
    SetEvent(started);
}

std::uint32_t watching_thread() noexcept { return thread_id; }

watchdog_pause_t::watchdog_pause_t(HANDLE process, std::uint32_t timeout) noexcept {
    grant(ULONGLONG{timeout} + handling_timeout);
    awaited = process;
}

watchdog_pause_t::~watchdog_pause_t() {
    awaited = nullptr;
    grant(handling_timeout);
}

}  // namespace crash
