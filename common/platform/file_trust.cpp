#include "common/platform/file_trust.h"

#include <cstring>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/path.h"
#include "common/platform/trusted_owner.h"

namespace platform {
namespace {

unique_file open(const std::wstring& path, DWORD access, DWORD sharing, DWORD creation, DWORD flags) {
    return unique_file(CreateFileW(system_path(path).c_str(), access, sharing, nullptr, creation,
                                   FILE_ATTRIBUTE_NORMAL | flags, nullptr));
}

unique_file open_log(const std::wstring& path, DWORD creation, DWORD flags) {
    return open(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, creation, flags);
}

// Opens a file or folder, or what it leads to, in a way that hinders nobody.
unique_file look_at(const std::wstring& path, DWORD flags = FILE_FLAG_OPEN_REPARSE_POINT) {
    constexpr DWORD any_sharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return open(path, READ_CONTROL | FILE_READ_ATTRIBUTES, any_sharing, OPEN_EXISTING,
                FILE_FLAG_BACKUP_SEMANTICS | flags);
}

// Zero for what is no reparse point. File systems without reparse points need not know this information.
DWORD reparse_tag(HANDLE opened) {
    FILE_ATTRIBUTE_TAG_INFO info{};
    GetFileInformationByHandleEx(opened, FileAttributeTagInfo, &info, sizeof info);
    return (info.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 ? info.ReparseTag : 0;
}

// Whether the name stands for another one. The other reparse points say which driver keeps the content of a file, for
// example because it is deduplicated, or stored in a cloud.
bool is_link(HANDLE opened) { return IsReparseTagNameSurrogate(reparse_tag(opened)); }

const char* reason_to_distrust(HANDLE file) {
    FILE_STANDARD_INFO standard{};
    if (!GetFileInformationByHandleEx(file, FileStandardInfo, &standard, sizeof standard)) {
        return "its attributes cannot be read";
    }
    if (is_link(file)) return "it is a link";
    if (standard.Directory) return "it is a folder";
    if (standard.NumberOfLinks > 1) return "it has more than one name";
    return has_trusted_owner(file) ? nullptr : "it belongs to another account";
}

std::string refusal(const std::wstring& path, const char* reason) {
    return exc::format_message("File [%1] is not used: %2.", {encoding::wide_to_utf8(path), reason});
}

void require(bool condition, const std::wstring& path, const char* reason) {
    if (!condition) exc::raise(refusal(path, reason));
}

bool same_file(const FILE_ID_INFO& identity, HANDLE file) {
    FILE_ID_INFO found{};
    return GetFileInformationByHandleEx(file, FileIdInfo, &found, sizeof found) &&
           std::memcmp(&identity, &found, sizeof found) == 0;
}

// The driver that keeps the content serves only those who open the file without FILE_FLAG_OPEN_REPARSE_POINT.
unique_file open_content(unique_file trusted, const std::wstring& path) {
    FILE_ID_INFO identity{};
    GetFileInformationByHandleEx(trusted.get(), FileIdInfo, &identity, sizeof identity);
    trusted.reset();
    unique_file file = open_log(path, OPEN_EXISTING, 0);
    require(file && same_file(identity, file.get()), path, "its content cannot be opened");
    return file;
}

// Whether the two are known not to be the same.
bool differ(const std::wstring& place, const std::wstring& expected) {
    return !place.empty() && !expected.empty() && !same_path(place, expected);
}

void require_place(bool is_right, const std::wstring& folder) {
    if (is_right) return;
    exc::raise(exc::format_message("Folder [%1] is not used: it leads elsewhere.", encoding::wide_to_utf8(folder)));
}

// Returns where the folder is, after having looked at each folder above it: one that is no trusted link must be in the
// place of the one above it. Returns an empty text if the system cannot say.
std::wstring expected_place(const std::wstring& folder) {
    const std::wstring parent = parent_of(folder);
    const bool is_top = parent == folder || !parent.starts_with(L"\\\\?\\");
    const std::wstring above = is_top ? L"" : expected_place(parent);
    const unique_file opened = look_at(folder);
    if (opened && is_link(opened.get())) {
        require_place(has_trusted_owner(opened.get()), folder);
        return final_path(look_at(folder, 0).get());
    }
    const std::wstring place = opened ? final_path(opened.get()) : L"";
    require_place(!differ(parent_of(place), above), folder);
    return place.empty() && !above.empty() ? join_path(above, file_name_of(folder)) : place;
}

}  // namespace

opened_file_t open_log_file(const std::wstring& path) {
    const unique_file folder = require_trusted_folder(parent_of(path));
    unique_file file = open_log(path, OPEN_ALWAYS, FILE_FLAG_OPEN_REPARSE_POINT);
    const DWORD code = GetLastError();
    require(file || code != ERROR_ACCESS_DENIED || !look_at(path), path, "access to it is denied");
    SetLastError(code);
    if (!file) return {};
    const std::wstring place = parent_of(final_path(file.get()));
    require(!differ(place, final_path(folder.get())), path, "it is in another folder");
    const bool existed = code == ERROR_ALREADY_EXISTS;
    if (existed) require_trusted_file(file.get(), path);
    if (existed && reparse_tag(file.get()) != 0) file = open_content(std::move(file), path);
    return {std::move(file), existed};
}

void require_trusted_file(HANDLE file, const std::wstring& path) {
    const char* const reason = reason_to_distrust(file);
    require(reason == nullptr, path, reason);
}

std::string obstacle_at(const std::wstring& path) {
    const unique_file opened = look_at(path);
    const char* const reason = opened ? reason_to_distrust(opened.get()) : nullptr;
    return reason != nullptr ? refusal(path, reason) : "";
}

unique_file require_trusted_folder(const std::wstring& path) {
    const std::wstring full = system_path(path);
    unique_file held =
        open(full, FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
    const std::wstring place = held ? final_path(held.get()) : L"";
    // Without a link on the way, the two are the same.
    if (!same_path(place, full)) require_place(!differ(expected_place(full), place), full);
    return held;
}

unique_file create_trusted_folder(const std::wstring& path) {
    unique_file held = require_trusted_folder(path);
    if (held) return held;
    create_directories(path);
    return require_trusted_folder(path);
}

std::vector<std::wstring> foreign_folders(const std::wstring& base, const std::wstring& folder) {
    std::vector<std::wstring> found;
    std::wstring at = folder;
    for (; at.size() > base.size() && parent_of(at) != at; at = parent_of(at)) {
        const unique_file opened = look_at(at);
        if (!opened || !has_trusted_owner(opened.get())) found.push_back(at);
    }
    return same_path(at, base) ? found : std::vector<std::wstring>();
}

}  // namespace platform
