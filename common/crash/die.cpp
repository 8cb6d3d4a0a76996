#include "common/crash/die.h"

#include <atomic>

#include "common/crash/crash_entry.h"
#include "common/crash/watchdog.h"

namespace crash {
namespace {

constexpr SIZE_T spare_stack = 524'288;
constexpr std::size_t handling_needs = 98'304;

// Never closed: a crash may come at any time until the process is gone.
HANDLE spare_thread = nullptr;
std::atomic<bool> spare_thread_needed{false};

std::atomic<DWORD> crashed_thread{0};
std::atomic<DWORD> handling_thread{0};
failure_t failure;

[[noreturn]] void end_process() noexcept {
    TerminateProcess(GetCurrentProcess(), failure.code);
    Sleep(INFINITE);
    __builtin_unreachable();
}

[[noreturn]] void handle_here() noexcept {
    handling_thread = GetCurrentThreadId();
    start_watchdog(failure.code);
    handle_crash(failure);
    end_process();
}

// Whoever resumes all threads of the process starts this one too early.
DWORD WINAPI run_spare_thread(void*) {
    while (!spare_thread_needed) Sleep(100);
    handle_here();
}

// False when there is no such thread, which includes a process that is exiting, and when this is it.
bool wake_spare_thread() noexcept {
    if (GetThreadId(spare_thread) == GetCurrentThreadId()) return false;
    if (WaitForSingleObject(spare_thread, 0) != WAIT_TIMEOUT) return false;
    spare_thread_needed = true;
    return ResumeThread(spare_thread) != static_cast<DWORD>(-1);
}

}  // namespace

void prepare_spare_thread() noexcept {
    // It starts when it is needed: Wine clears the stack of each thread that starts, which every run would pay for.
    spare_thread = CreateThread(nullptr, spare_stack, &run_spare_thread, nullptr, CREATE_SUSPENDED, nullptr);
}

std::size_t stack_left() noexcept {
    ULONG_PTR lowest = 0;
    ULONG_PTR highest = 0;
    GetCurrentThreadStackLimits(&lowest, &highest);
    return reinterpret_cast<ULONG_PTR>(__builtin_frame_address(0)) - lowest;
}

void die(EXCEPTION_POINTERS* pointers) noexcept {
    const DWORD self = GetCurrentThreadId();
    DWORD nobody = 0;
    if (crashed_thread.compare_exchange_strong(nobody, self)) {
        failure = {pointers->ExceptionRecord->ExceptionCode, self, pointers};
    } else if (self != handling_thread) {
        Sleep(INFINITE);
    }
    if (stack_left() < handling_needs && wake_spare_thread()) {
        WaitForSingleObject(spare_thread, INFINITE);
        end_process();
    }
    handle_here();
}

}  // namespace crash
