#include "common/platform/trusted_owner.h"

#include <array>

#include "common/exc/raise.h"
#include "common/platform/owned.h"

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

// Full access for SYSTEM, Administrators and the current account, for the folder and what is created in it. Made
// without text forms, whose conversion may load libraries: a crashed thread may hold the loader's lock.
class private_rights_t {
public:
    private_rights_t() {
        InitializeAcl(&list_.acl, sizeof list_, ACL_REVISION);
        for (const WELL_KNOWN_SID_TYPE type : {WinLocalSystemSid, WinBuiltinAdministratorsSid}) {
            std::array<unsigned char, SECURITY_MAX_SID_SIZE> account{};
            auto size = static_cast<DWORD>(account.size());
            CreateWellKnownSid(type, nullptr, account.data(), &size);
            grant(account.data());
        }
        grant(current_account_t().sid());
        InitializeSecurityDescriptor(&descriptor_, SECURITY_DESCRIPTOR_REVISION);
        SetSecurityDescriptorDacl(&descriptor_, TRUE, &list_.acl, FALSE);
        SetSecurityDescriptorControl(&descriptor_, SE_DACL_PROTECTED, SE_DACL_PROTECTED);
    }
    private_rights_t(const private_rights_t&) = delete;
    private_rights_t& operator=(const private_rights_t&) = delete;

    SECURITY_DESCRIPTOR* descriptor() { return &descriptor_; }

private:
    void grant(PSID account) {
        AddAccessAllowedAceEx(&list_.acl, ACL_REVISION, OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE, FILE_ALL_ACCESS,
                              account);
    }

    SECURITY_DESCRIPTOR descriptor_{};
    union {
        ACL acl;
        unsigned char room[sizeof(ACL) + 3 * (sizeof(ACCESS_ALLOWED_ACE) + SECURITY_MAX_SID_SIZE)];
    } list_{};
};

}  // namespace

bool is_trusted_owner(PSID owner) {
    return IsWellKnownSid(owner, WinLocalSystemSid) || IsWellKnownSid(owner, WinBuiltinAdministratorsSid) ||
           EqualSid(owner, current_account_t().sid());
}

bool has_trusted_owner(HANDLE opened) {
    // Not by GetSecurityInfo(), which loads libraries: a crashed thread asks here, too.
    alignas(SECURITY_DESCRIPTOR) std::array<unsigned char, sizeof(SECURITY_DESCRIPTOR) + SECURITY_MAX_SID_SIZE> read{};
    DWORD size = 0;
    PSID owner = nullptr;
    BOOL is_default = FALSE;
    if (!GetKernelObjectSecurity(opened, OWNER_SECURITY_INFORMATION, read.data(), static_cast<DWORD>(read.size()),
                                 &size) ||
        !GetSecurityDescriptorOwner(read.data(), &owner, &is_default) || owner == nullptr) {
        return false;
    }
    // Everyone means that there are no owners, as on FAT.
    return IsWellKnownSid(owner, WinWorldSid) || is_trusted_owner(owner);
}

bool create_private_folder(const std::wstring& path) {
    private_rights_t rights;
    SECURITY_ATTRIBUTES attributes{sizeof attributes, rights.descriptor(), FALSE};
    return CreateDirectoryW(path.c_str(), &attributes) != FALSE;
}

bool make_private(HANDLE folder) {
    DWORD features = 0;
    if (GetVolumeInformationByHandleW(folder, nullptr, 0, nullptr, nullptr, &features, nullptr, 0) &&
        (features & FILE_PERSISTENT_ACLS) == 0) {
        return true;
    }
    private_rights_t rights;
    return SetKernelObjectSecurity(folder, DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION,
                                   rights.descriptor()) != FALSE;
}

}  // namespace platform
