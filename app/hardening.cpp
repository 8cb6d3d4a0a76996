#include "app/hardening.h"

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

}  // namespace

void HardenProcess() noexcept {
    SetDllDirectoryW(L"");
    RefuseForeignJunctions();
}

}  // namespace app
