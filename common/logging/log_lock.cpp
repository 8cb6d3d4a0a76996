#include "common/logging/log_lock.h"

#include "common/platform/owned.h"
#include "common/win32.h"

namespace logging {
namespace {

// A record is written in a few microseconds, an archive in a second. Those who wait ask again, first at once, then
// letting others run, then every millisecond: so the thread that gives the lock back has nobody to wake, which would
// cost it as much as writing a record.
constexpr int rounds_at_once = 20;
constexpr int rounds_yielding = 20;

bool has_ended(std::uint32_t thread) {
    const platform::unique_handle handle(OpenThread(SYNCHRONIZE, FALSE, thread));
    if (!handle) return GetLastError() == ERROR_INVALID_PARAMETER;
    return WaitForSingleObject(handle.get(), 0) == WAIT_OBJECT_0;
}

}  // namespace

bool log_lock_t::try_enter(std::uint32_t self) noexcept {
    std::uint32_t holder = owner();
    if (holder != self && (holder != 0 || !owner_.compare_exchange_strong(holder, self, std::memory_order_acquire))) {
        return false;
    }
    ++depth_;
    return true;
}

void log_lock_t::lock() noexcept {
    const std::uint32_t self = GetCurrentThreadId();
    if (!try_enter(self)) wait_for(self);
}

void log_lock_t::wait_for(std::uint32_t self) noexcept {
    for (int round = 0; !try_enter(self); ++round) {
        if (round < rounds_at_once) {
            YieldProcessor();
        } else if (round < rounds_at_once + rounds_yielding) {
            SwitchToThread();
        } else {
            Sleep(1);
        }
    }
}

void log_lock_t::unlock() noexcept {
    if (--depth_ == 0) owner_.store(0, std::memory_order_release);
}

bool log_lock_t::try_lock_for(std::chrono::milliseconds wait, std::uint32_t stopped_thread) noexcept {
    const std::uint32_t self = GetCurrentThreadId();
    const ULONGLONG begin = GetTickCount64();
    while (!try_enter(self)) {
        const std::uint32_t holder = owner();
        if (holder != 0) {
            if (holder == stopped_thread) return false;
            // A thread that gave the lock back before it ended has left it to somebody else, or to nobody.
            if (has_ended(holder) && owner() == holder) return false;
        }
        if (GetTickCount64() - begin >= static_cast<ULONGLONG>(wait.count())) return false;
        Sleep(1);
    }
    return true;
}

}  // namespace logging
