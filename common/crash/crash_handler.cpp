#include "common/crash/crash_handler.h"

#include <atomic>

#include "common/crash/crash_entry.h"
#include "common/crash/crash_thread.h"
#include "common/crash/fatal_hooks.h"
#include "common/crash/watchdog.h"
#include "common/logging/log_exception.h"
#include "common/logging/log_settings.h"

namespace crash {
void install(const std::wstring& log_folder) noexcept {
    static std::atomic_flag installed;
    if (installed.test_and_set()) return;
    prepare_watchdog();
    prepare_crash_thread();
    install_fatal_hooks();
    try {
        set_dump_folder(logging::log_folder_path(log_folder) + L"\\Dumps");
    } catch (const std::exception& failure) {
        // Dumps then go to the current folder.
        logging::log_exception(logging::ormacon_tool, failure);
    }
}

}  // namespace crash
