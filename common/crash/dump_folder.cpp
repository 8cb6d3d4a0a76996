#include "common/crash/dump_folder.h"

#include <cwchar>

#include "common/crash/shared/retention.h"
#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/log_exception.h"
#include "common/platform/file_trust.h"
#include "common/platform/path.h"
#include "common/platform/trusted_owner.h"

namespace crash {
namespace {

constexpr unsigned max_identifiers = 10000;

void check(HANDLE opened, const std::wstring& folder, const std::wstring& expected) {
    FILE_BASIC_INFO basic{};
    const bool is_known = GetFileInformationByHandleEx(opened, FileBasicInfo, &basic, sizeof basic) != FALSE;
    if ((basic.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        exc::raise_path_error(is_known ? ERROR_DIRECTORY : GetLastError(), "Cannot open dump folder [%1].", folder);
    }
    const std::string shown = encoding::wide_to_utf8(folder);
    if (!platform::has_trusted_owner(opened)) {
        exc::raise(exc::format_message("Dump folder [%1] belongs to another account.", shown));
    }
    const bool is_link = (basic.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    if (is_link || !platform::same_path(platform::final_path(opened), expected)) {
        exc::raise(exc::format_message("Dump folder [%1] is a link.", shown));
    }
}

// Whether the dump is gone. One that cannot be deleted is logged.
bool delete_dump(const logging::component_t& component, const std::wstring& path) try {
    if (DeleteFileW(platform::system_path(path).c_str())) {
        component.info(exc::format_message("Dump [%1] deleted.", encoding::wide_to_utf8(path)));
        return true;
    }
    const DWORD code = GetLastError();
    if (code == ERROR_FILE_NOT_FOUND) return true;  // another program that crashes at this moment was quicker
    exc::raise_path_error(code, "Old dump cannot be removed. Dump path: [%1].", path);
} catch (const std::exception& failure) {
    logging::log_exception(component, failure);
    return false;
}

}  // namespace

dump_folder_t open_dump_folder(const std::wstring& folder) {
    const std::wstring path = platform::system_path(folder);
    dump_folder_t opened{platform::create_trusted_folder(platform::parent_of(folder)), {}};
    if (!platform::create_private_folder(path) && GetLastError() != ERROR_ALREADY_EXISTS) {
        exc::raise_path_error(GetLastError(), "Cannot create directory [%1].", folder);
    }
    opened.folder = platform::unique_file(
        CreateFileW(path.c_str(), FILE_LIST_DIRECTORY | READ_CONTROL | WRITE_DAC, FILE_SHARE_READ, nullptr,
                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (!opened.folder) exc::raise_path_error(GetLastError(), "Cannot open dump folder [%1].", folder);
    const std::wstring inside = platform::final_path(opened.parent.get());
    check(opened.folder.get(), folder, platform::join_path(inside, platform::file_name_of(folder)));
    if (!platform::make_private(opened.folder.get()))
        exc::raise_path_error(GetLastError(), "Cannot protect dump folder [%1].", folder);
    return opened;
}

void cleanup_dumps(const logging::component_t& component, const std::wstring& folder, std::size_t maximum_count) {
    const std::wstring dumps = platform::system_path(platform::join_path(folder, dump_pattern));
    const ULONG64 count = delete_old_dumps(dumps.c_str(), maximum_count, [&](const wchar_t* name) {
        return delete_dump(component, platform::join_path(folder, name));
    });
    if (count < maximum_count) return;
    exc::raise(exc::format_message(
        "Cannot cleanup out of date dumps. There are [%1] dumps stored. Maximum allowed dumps number: [%2].",
        {std::to_string(count), std::to_string(maximum_count)}));
}

unsigned first_free_identifier(const std::set<unsigned>& taken) {
    for (unsigned identifier = 1; identifier <= max_identifiers; ++identifier) {
        if (!taken.contains(identifier)) return identifier;
    }
    exc::raise("All dump identifiers are reserved.");
}

std::wstring reserve_dump_identifier(const std::wstring& path) {
    const std::wstring folder = platform::parent_of(path);
    const std::wstring begin = platform::file_name_of(path) + L"_" + std::to_wstring(GetCurrentProcessId()) + L"_";
    std::set<unsigned> taken;
    // One listing: asking for each name takes long in a crowded folder.
    const std::wstring dumps = platform::system_path(platform::join_path(folder, begin + L"*"));
    WIN32_FIND_DATAW buffer;
    WIN32_FIND_DATAW* entry = &buffer;
    for_each_dump(dumps.c_str(), entry, [&] {
        taken.insert(static_cast<unsigned>(std::wcstoul(entry->cFileName + begin.size(), nullptr, 10)));
    });
    return platform::join_path(folder, begin) + std::to_wstring(first_free_identifier(taken));
}

}  // namespace crash
