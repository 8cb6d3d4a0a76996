#include "common/platform/account.h"

#include <array>

#include "common/exc/raise.h"
#include "common/platform/owned.h"

#include <aclapi.h>
#include <sddl.h>

namespace platform {
namespace {

class current_account_t {
public:
    current_account_t() {
        unique_handle token;
        DWORD size = 0;
        if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.put()) &&
            GetTokenInformation(token.get(), TokenUser, buffer_.data(), static_cast<DWORD>(buffer_.size()), &size)) {
            return;
        }
        const DWORD code = GetLastError();
        exc::raise_win_error(code, "Cannot determine the current account.");
    }

    PSID sid() const { return reinterpret_cast<const TOKEN_USER*>(buffer_.data())->User.Sid; }

private:
    alignas(TOKEN_USER) std::array<unsigned char, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> buffer_{};
};

std::wstring account_text(PSID account) {
    wchar_t* text = nullptr;
    if (!ConvertSidToStringSidW(account, &text)) return L"unknown";
    const unique_local held(text);
    return text;
}

}  // namespace

bool is_trusted_owner(PSID owner) {
    return IsWellKnownSid(owner, WinLocalSystemSid) || IsWellKnownSid(owner, WinBuiltinAdministratorsSid) ||
           EqualSid(owner, current_account_t().sid());
}

bool has_trusted_owner(HANDLE opened) {
    PSID owner = nullptr;
    unique_local descriptor;
    const DWORD failure = GetSecurityInfo(opened, SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr,
                                          nullptr, descriptor.put());
    if (failure != ERROR_SUCCESS || owner == nullptr) return false;
    // Everyone means that there are no owners, as on FAT.
    return IsWellKnownSid(owner, WinWorldSid) || is_trusted_owner(owner);
}

bool create_private_folder(const std::wstring& path) {
    const std::wstring rights =
        L"D:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;FA;;;" + account_text(current_account_t().sid()) + L")";
    unique_local descriptor;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(rights.c_str(), SDDL_REVISION_1, descriptor.put(),
                                                              nullptr)) {
        return false;
    }
    SECURITY_ATTRIBUTES attributes{sizeof attributes, descriptor.get(), FALSE};
    return CreateDirectoryW(path.c_str(), &attributes) != FALSE;
}

}  // namespace platform
