// Ends a process that hangs while its crash is handled.
#pragma once

#include <cstdint>

namespace crash {

// Creates the watching thread. It ends the process with the exit code of the calling thread (1 instead of 0) should
// that one end without the process: a thread without any stack left can be stopped by the system with no word to
// anybody. To be called by the main thread. Without the watching thread what hangs is not ended.
void prepare_watchdog() noexcept;

// From here on the process has a minute to end by itself, then it is ended with the exit status.
void start_watchdog(std::uint32_t exit_status) noexcept;

// While it lives the time stands still; afterwards there is a whole minute again. For the one thread that handles the
// crash.
class watchdog_pause_t {
public:
    watchdog_pause_t() noexcept;
    ~watchdog_pause_t();
    watchdog_pause_t(const watchdog_pause_t&) = delete;
    watchdog_pause_t& operator=(const watchdog_pause_t&) = delete;
};

}  // namespace crash
