#include "common/crash/die.h"

#include <atomic>

#include "common/crash/crash_entry.h"
#include "common/crash/watchdog.h"

namespace crash {
namespace {

constexpr std::size_t handling_needs = 98'304;

std::atomic<DWORD> crashed_thread{0};
std::atomic<DWORD> handling_thread{0};
failure_t failure;

[[noreturn]] void handle_here() noexcept {
    handling_thread = GetCurrentThreadId();
    start_watchdog(failure.code);
    handle_crash(failure);
    TerminateProcess(GetCurrentProcess(), failure.code);
    for (;;) Sleep(INFINITE);
}

}  // namespace

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
    if (stack_left() < handling_needs && run_on_watching_thread(&handle_here, failure.code)) Sleep(INFINITE);
    handle_here();
}

}  // namespace crash
