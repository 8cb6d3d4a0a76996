#include "common/crash/watchdog.h"

#include <atomic>

#include "common/win32.h"

namespace crash {
namespace {

constexpr DWORD limit = 60'000;  // milliseconds
constexpr SIZE_T stack_size = 16'384;

// Never closed: a crash may come at any time until the process is gone.
HANDLE started = nullptr;
HANDLE main_thread = nullptr;
std::atomic<std::uint32_t> status{0};
std::atomic<ULONGLONG> begin{0};
std::atomic<bool> paused{false};

bool in_time() { return paused || GetTickCount64() - begin < limit; }

void end_with_main_thread() {
    DWORD code = 0;
    GetExitCodeThread(main_thread, &code);
    TerminateProcess(GetCurrentProcess(), code == 0 ? 1 : code);
}

// Nothing but calls that need no lock of the process: any may be held by a thread that hangs.
DWORD WINAPI watch(void*) {
    const HANDLE events[] = {started, main_thread};
    if (WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0 + 1) end_with_main_thread();
    while (in_time()) Sleep(500);
    TerminateProcess(GetCurrentProcess(), status);
    return 0;
}

}  // namespace

void prepare_watchdog() noexcept {
    started = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const HANDLE process = GetCurrentProcess();
    if (started == nullptr ||
        !DuplicateHandle(process, GetCurrentThread(), process, &main_thread, 0, FALSE, DUPLICATE_SAME_ACCESS)) {
        return;
    }
    if (const HANDLE thread = CreateThread(nullptr, stack_size, &watch, nullptr, 0, nullptr)) CloseHandle(thread);
}

void start_watchdog(std::uint32_t exit_status) noexcept {
    status = exit_status;
    begin = GetTickCount64();
    SetEvent(started);
}

watchdog_pause_t::watchdog_pause_t() noexcept { paused = true; }

watchdog_pause_t::~watchdog_pause_t() {
    begin = GetTickCount64();
    paused = false;
}

}  // namespace crash
