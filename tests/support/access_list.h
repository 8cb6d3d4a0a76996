#pragma once

#include <filesystem>
#include <string>

#include "common/win32.h"

#include <sddl.h>

namespace test_support {

// The entries of the access list of a file or folder, such as "(A;;FA;;;SY)" for full access of the system.
inline std::wstring access_list(const std::filesystem::path& path) {
    char descriptor[1024];
    DWORD size = 0;
    LPWSTR text = nullptr;
    GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor, sizeof descriptor, &size);
    ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text,
                                                         nullptr);
    const std::wstring result = text ? text : L"";
    LocalFree(text);
    return result;
}

}  // namespace test_support
