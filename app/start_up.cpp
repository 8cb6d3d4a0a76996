#include "app/start_up.h"

#include <string>

#include "common/exc/raise.h"
#include "common/logging/open_log.h"
#include "common/plugin/common_settings.h"
#include "common/plugin/working_directory.h"
#include "common/win32.h"

#include <objbase.h>

namespace app {
namespace {

void InitializeCom() {
    if (CoInitializeEx(nullptr, COINIT_MULTITHREADED) < 0) exc::raise("Failed to initialize COM library");
}

}  // namespace

void InitializeApplication() {
    InitializeCom();
    const std::wstring settings_directory = plugin::get_current_directory();
    logging::initialise(logging::ormacon_tool, log_folder, L"Ormacon.log");
    logging::ormacon_tool.info(std::string(84, '='));
    plugin::load_common_settings(settings_directory);
}

}  // namespace app
