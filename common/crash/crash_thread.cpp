#include "common/crash/crash_thread.h"

#include <atomic>
#include <cstdlib>

#include "common/crash/crash_entry.h"
#include "common/crash/watchdog.h"

namespace crash {
namespace {

constexpr SIZE_T stack_size = 524'288;
constexpr DWORD longest_probe = 3000;  // milliseconds

// Never closed: a crash may come at any time until the process is gone.
HANDLE crashed = nullptr;
HANDLE ready = nullptr;
std::atomic<DWORD> crash_thread{0};

std::atomic<DWORD> crashed_thread{0};
std::atomic<bool> taken{false};
failure_t failure;

[[noreturn]] void end_process() noexcept {
    TerminateProcess(GetCurrentProcess(), failure.code);
    Sleep(INFINITE);
    __builtin_unreachable();
}

void handle_unless_taken() noexcept {
    if (taken.exchange(true)) return;
    handle_crash(failure);
    end_process();
}

// Hangs where a crash inside of the heap left it locked.
void use_heap() noexcept {
    HeapFree(GetProcessHeap(), 0, HeapAlloc(GetProcessHeap(), 0, 1));
    void* volatile block = std::malloc(1);  // volatile: an unused block is not even asked for
    std::free(block);
}

DWORD WINAPI wait_for_crash(void*) {
    WaitForSingleObject(crashed, INFINITE);
    use_heap();
    SetEvent(ready);
    handle_unless_taken();
    return 0;
}

// False when another thread crashed before.
bool claim() noexcept {
    DWORD nobody = 0;
    if (crashed_thread.compare_exchange_strong(nobody, GetCurrentThreadId())) return true;
    // The thread that handles the crash must not wait for itself. Where the probe of the heap crashed, the thread of
    // the first crash goes on.
    const DWORD thread = GetCurrentThreadId();
    if (thread == crashed_thread || (thread == crash_thread && taken)) end_process();
    return false;
}

}  // namespace

void prepare_crash_thread() noexcept {
    crashed = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ready = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (crashed == nullptr || ready == nullptr) return;
    DWORD id = 0;
    const HANDLE thread = CreateThread(nullptr, stack_size, &wait_for_crash, nullptr, 0, &id);
    if (thread == nullptr) return;
    crash_thread = id;
    CloseHandle(thread);
}

void die(EXCEPTION_POINTERS* pointers) noexcept {
    if (!claim()) Sleep(INFINITE);
    failure = {pointers->ExceptionRecord->ExceptionCode, GetCurrentThreadId(), pointers};
    start_watchdog(failure.code);
    const bool has_thread = crash_thread != 0 && SetEvent(crashed);
    // The thread does not get to the heap when this one holds it, and does not exist any more when the process is
    // about to exit: then it is done here, where the locks of this thread do not bar the way.
    if (!has_thread || WaitForSingleObject(ready, longest_probe) != WAIT_OBJECT_0) handle_unless_taken();
    Sleep(INFINITE);
    end_process();
}

}  // namespace crash
