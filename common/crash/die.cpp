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
HANDLE spare_thread_needed = nullptr;

std::atomic<DWORD> handling_thread{0};
cause_t cause;

[[noreturn]] void end_process() noexcept {
    TerminateProcess(GetCurrentProcess(), cause.code);
    Sleep(INFINITE);
    __builtin_unreachable();
}

[[noreturn]] void handle_here() noexcept {
    handling_thread = GetCurrentThreadId();
    handle_crash(cause);
    end_process();
}

DWORD WINAPI run_spare_thread(void* running) {
    SetEvent(running);
    WaitForSingleObject(spare_thread_needed, INFINITE);
    handle_here();
}

// False when there is no such thread, which includes a process that is exiting, and when this is it.
bool wake_spare_thread() noexcept {
    return GetThreadId(spare_thread) != GetCurrentThreadId() && WaitForSingleObject(spare_thread, 0) == WAIT_TIMEOUT &&
           SetEvent(spare_thread_needed);
}

}  // namespace

void prepare_spare_thread() noexcept {
    spare_thread_needed = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (spare_thread_needed != nullptr) spare_thread = start_lasting_thread(&run_spare_thread, spare_stack);
}

bool is_handling_crash() noexcept { return handling_thread == GetCurrentThreadId(); }

void die(EXCEPTION_POINTERS* pointers) noexcept {
    start_watchdog(pointers->ExceptionRecord->ExceptionCode);
    const DWORD self = GetCurrentThreadId();
    DWORD other = 0;
    if (!handling_thread.compare_exchange_strong(other, self) && other != self) Sleep(INFINITE);
    // Not in the same step: a fault in between leads here again.
    if (cause.pointers == nullptr) cause = {pointers->ExceptionRecord->ExceptionCode, self, pointers};
    ULONG_PTR lowest = 0;
    ULONG_PTR highest = 0;
    GetCurrentThreadStackLimits(&lowest, &highest);
    const auto left = reinterpret_cast<ULONG_PTR>(__builtin_frame_address(0)) - lowest;
    if (left < handling_needs && wake_spare_thread()) {
        WaitForSingleObject(spare_thread, INFINITE);
        end_process();
    }
    handle_here();
}

}  // namespace crash
