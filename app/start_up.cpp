#include "app/start_up.h"

#include <exception>
#include <string>

#include "common/exc/raise.h"
#include "common/logging/open_log.h"
#include "common/platform/module.h"
#include "common/platform/path.h"
#include "common/plugin/common_settings.h"
#include "common/plugin/working_directory.h"
#include "common/win32.h"

#include <objbase.h>

namespace app {
namespace {

// Newer than the headers of some supported compilers.
constexpr int redirection_trust_policy = 16;
constexpr DWORD enforce_redirection_trust = 1;

using set_policy_t = BOOL(WINAPI*)(int policy, const void* value, SIZE_T size);

void RefuseForeignJunctions() noexcept {
    const auto set_policy = reinterpret_cast<set_policy_t>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetProcessMitigationPolicy")));
    const DWORD policy = enforce_redirection_trust;
    if (set_policy != nullptr) set_policy(redirection_trust_policy, &policy, sizeof policy);
}

// Any folder that is named here takes the current folder's place in the search. The program's own is searched before it
// anyway. An empty text would do as well on Windows, but Wine ignores it.
void LeaveCurrentFolderOut() noexcept try {
    SetDllDirectoryW(platform::parent_of(platform::program_path()).c_str());
} catch (const std::exception&) {
    SetDllDirectoryW(L"");
}

void InitializeCom() {
    if (CoInitializeEx(nullptr, COINIT_MULTITHREADED) < 0) exc::raise("Failed to initialize COM library");
}

}  // namespace

void HardenProcess() noexcept {
    LeaveCurrentFolderOut();
    RefuseForeignJunctions();
}

void InitializeApplication() {
    InitializeCom();
    const std::wstring settings_directory = plugin::get_current_directory();
    logging::initialise(logging::ormacon_tool, log_folder, L"Ormacon.log");
    logging::ormacon_tool.info(std::string(84, '='));
    plugin::load_common_settings(settings_directory);
}

}  // namespace app
