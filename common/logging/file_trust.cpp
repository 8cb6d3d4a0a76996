#include "common/logging/file_trust.h"

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/account.h"
#include "common/platform/owned.h"
#include "common/platform/path.h"
#include "common/text/convert.h"

namespace logging {
namespace {

const char* reason_to_distrust(HANDLE file) {
    FILE_BASIC_INFO basic{};
    FILE_STANDARD_INFO standard{};
    if (!GetFileInformationByHandleEx(file, FileBasicInfo, &basic, sizeof basic) ||
        !GetFileInformationByHandleEx(file, FileStandardInfo, &standard, sizeof standard)) {
        return "its attributes cannot be read";
    }
    if ((basic.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return "it is a reparse point";
    if (standard.NumberOfLinks > 1) return "it has more than one name";
    return platform::has_trusted_owner(file) ? nullptr : "it belongs to another account";
}

[[noreturn]] void refuse(const std::wstring& path, const char* reason) {
    exc::raise(exc::format_message("File [%1] is not used: %2.", {text::wide_to_utf8(path), reason}));
}

}  // namespace

void require_trusted_file(HANDLE file, const std::wstring& path) {
    if (const char* const reason = reason_to_distrust(file)) refuse(path, reason);
}

void refuse_existing_file(const std::wstring& path) {
    const bool exists = GetFileAttributesW(platform::system_path(path).c_str()) != INVALID_FILE_ATTRIBUTES;
    if (exists) refuse(path, "access to it is denied");
}

platform::unique_file require_trusted_folder(const std::wstring& path) {
    const std::wstring last = platform::system_path(path);
    platform::unique_file held(CreateFileW(last.c_str(), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                           nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    for (std::wstring folder = last; platform::parent_of(folder) != folder; folder = platform::parent_of(folder)) {
        const DWORD attributes = GetFileAttributesW(folder.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) continue;
        const platform::unique_file opened(
            CreateFileW(folder.c_str(), READ_CONTROL, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
        if (opened && platform::has_trusted_owner(opened.get())) continue;
        exc::raise(
            exc::format_message("Log folder [%1] is not used: [%2] leads elsewhere and belongs to another account.",
                                {text::wide_to_utf8(path), text::wide_to_utf8(folder)}));
    }
    return held;
}

}  // namespace logging
