#include "common/crash/dump_folder.h"

#include <algorithm>
#include <cwchar>
#include <vector>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/component.h"
#include "common/logging/file_trust.h"
#include "common/logging/log_exception.h"
#include "common/platform/account.h"
#include "common/platform/path.h"
#include "common/text/convert.h"

namespace crash {
namespace {

constexpr unsigned most_identifiers = 10000;

[[noreturn]] void raise_for(const std::wstring& folder, const char* sentence) {
    const DWORD code = GetLastError();
    exc::raise_win_error(code, exc::format_message(sentence, text::wide_to_utf8(folder)));
}

void check_owner(HANDLE opened, const std::wstring& folder) {
    if (platform::has_trusted_owner(opened)) return;
    exc::raise(exc::format_message("Dump folder [%1] belongs to another account.", text::wide_to_utf8(folder)));
}

// By the path, which nobody can rename while the folder is open. A link is not followed.
void check_kind(const std::wstring& path, const std::wstring& folder) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) raise_for(folder, "Cannot open dump folder [%1].");
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        exc::raise(exc::format_message("Dump folder [%1] is a link.", text::wide_to_utf8(folder)));
    }
    SetLastError(ERROR_DIRECTORY);
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) raise_for(folder, "Cannot open dump folder [%1].");
}

// Calls take(entry) for each dump in the folder whose name fits the pattern.
template <class Take>
void for_each_dump(const std::wstring& folder, const std::wstring& pattern, const Take& take) {
    WIN32_FIND_DATAW entry;
    const platform::unique_find search(
        FindFirstFileW(platform::system_path(platform::join_path(folder, pattern)).c_str(), &entry));
    if (!search) return;
    do {
        if (is_dump(entry)) take(entry);
    } while (FindNextFileW(search.get(), &entry));
}

std::vector<WIN32_FIND_DATAW> dumps_oldest_first(const std::wstring& folder) {
    std::vector<WIN32_FIND_DATAW> dumps;
    for_each_dump(folder, dump_pattern, [&](const WIN32_FIND_DATAW& entry) { dumps.push_back(entry); });
    std::ranges::sort(dumps, [](const auto& first, const auto& second) { return compare_age(first, second) < 0; });
    return dumps;
}

// Whether the dump is gone. One that cannot be deleted is logged.
bool delete_dump(const std::wstring& path) try {
    const std::string shown = text::wide_to_utf8(path);
    if (DeleteFileW(platform::system_path(path).c_str())) {
        logging::ormacon_tool.info(exc::format_message("Dump [%1] deleted.", shown));
        return true;
    }
    const DWORD code = GetLastError();
    if (code == ERROR_FILE_NOT_FOUND) return true;  // another program that crashes at this moment was quicker
    exc::raise_win_error(code, exc::format_message("Old dump cannot be removed. Dump path: [%1].", shown));
} catch (const std::exception& failure) {
    logging::log_exception(logging::ormacon_tool, failure);
    return false;
}

}  // namespace

platform::unique_file open_dump_folder(const std::wstring& folder) {
    const std::wstring path = platform::system_path(folder);
    logging::require_trusted_folder(platform::parent_of(folder));
    platform::create_directories(platform::parent_of(folder));
    if (!platform::create_private_folder(path) && GetLastError() != ERROR_ALREADY_EXISTS) {
        raise_for(folder, "Cannot create directory [%1].");
    }
    platform::unique_file opened(CreateFileW(path.c_str(), FILE_LIST_DIRECTORY | READ_CONTROL, FILE_SHARE_READ, nullptr,
                                             OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT,
                                             nullptr));
    if (!opened) raise_for(folder, "Cannot open dump folder [%1].");
    check_owner(opened.get(), folder);
    check_kind(path, folder);
    return opened;
}

void cleanup_dumps(const std::wstring& folder, std::size_t maximum_count) {
    const std::vector<WIN32_FIND_DATAW> dumps = dumps_oldest_first(folder);
    std::size_t count = dumps.size();
    for (const WIN32_FIND_DATAW& dump : dumps) {
        if (count < maximum_count) return;
        if (delete_dump(platform::join_path(folder, dump.cFileName))) --count;
    }
    if (count < maximum_count) return;
    exc::raise(exc::format_message(
        "Cannot cleanup out of date dumps. There are [%1] dumps stored. Maximum allowed dumps number: [%2].",
        {std::to_string(count), std::to_string(maximum_count)}));
}

unsigned first_free_identifier(const std::set<unsigned>& taken) {
    for (unsigned identifier = 1; identifier <= most_identifiers; ++identifier) {
        if (!taken.contains(identifier)) return identifier;
    }
    exc::raise("All dump identifiers are reserved.");
}

std::wstring reserve_dump_identifier(const std::wstring& path) {
    const std::wstring folder = platform::parent_of(path);
    const std::wstring begin = platform::file_name_of(path) + L"_" + std::to_wstring(GetCurrentProcessId()) + L"_";
    std::set<unsigned> taken;
    // One listing: asking for each name takes long in a crowded folder.
    for_each_dump(folder, begin + L"*", [&](const WIN32_FIND_DATAW& entry) {
        taken.insert(static_cast<unsigned>(std::wcstoul(entry.cFileName + begin.size(), nullptr, 10)));
    });
    return platform::join_path(folder, begin) + std::to_wstring(first_free_identifier(taken));
}

}  // namespace crash
