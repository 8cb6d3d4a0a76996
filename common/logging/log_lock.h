// The lock of a logger: re-entrant for the thread that holds it, with an entrance for a process that is about to die.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace logging {

class log_lock_t {
public:
    log_lock_t() = default;
    log_lock_t(const log_lock_t&) = delete;
    log_lock_t& operator=(const log_lock_t&) = delete;

    void lock() noexcept;
    void unlock() noexcept;

    // False when the lock was not free within the time, and at once when it is held by a thread that has ended or by
    // stopped_thread (a Win32 thread id, 0 for none), of which the caller knows that it will not run on.
    bool try_lock_for(std::chrono::milliseconds wait, std::uint32_t stopped_thread) noexcept;

    // The thread that holds it, 0 for none.
    std::uint32_t owner() const noexcept { return owner_.load(std::memory_order_relaxed); }

private:
    bool try_enter(std::uint32_t self) noexcept;
    void wait_for(std::uint32_t self) noexcept;

    std::atomic<std::uint32_t> owner_{0};
    unsigned depth_ = 0;
};

}  // namespace logging
