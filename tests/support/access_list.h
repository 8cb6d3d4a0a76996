#pragma once

#include <filesystem>
#include <string>

#include "common/win32.h"

#include <aclapi.h>
#include <sddl.h>

namespace test_support {

// The entries of the access list of a file or folder, such as "(A;;FA;;;SY)" for full access of the system.
inline std::wstring access_list(const std::filesystem::path& path) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    LPWSTR text = nullptr;
    GetNamedSecurityInfoW(path.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, nullptr, nullptr,
                          &descriptor);
    ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text,
                                                         nullptr);
    const std::wstring result = text ? text : L"";
    LocalFree(text);
    LocalFree(descriptor);
    return result;
}

}  // namespace test_support
