#include "app/hardening.h"

#include <exception>

#include "common/platform/module.h"
#include "common/platform/path.h"
#include "common/win32.h"

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

}  // namespace

void HardenProcess() noexcept {
    LeaveCurrentFolderOut();
    RefuseForeignJunctions();
}

}  // namespace app
