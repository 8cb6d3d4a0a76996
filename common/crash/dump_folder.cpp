#include "common/crash/dump_folder.h"

#include <algorithm>
#include <cwchar>
#include <vector>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/component.h"
#include "common/logging/log_exception.h"
#include "common/platform/path.h"
#include "common/platform/owned.h"
#include "common/text/convert.h"

namespace crash {
namespace {

constexpr unsigned most_identifiers = 10000;

// Calls take(entry) for each dump in the folder whose name fits the pattern.
template <class Take>
void for_each_dump(const std::wstring& folder, const std::wstring& pattern, const Take& take) {
    WIN32_FIND_DATAW entry;
    const platform::unique_find search(FindFirstFileW((folder + L"\\" + pattern).c_str(), &entry));
    if (!search) return;
    do {
        if (is_dump(entry)) take(entry);
    } while (FindNextFileW(search.get(), &entry));
}

std::vector<WIN32_FIND_DATAW> dumps_oldest_first(const std::wstring& folder) {
    std::vector<WIN32_FIND_DATAW> dumps;
    for_each_dump(folder, dump_pattern, [&](const WIN32_FIND_DATAW& entry) { dumps.push_back(entry); });
    std::sort(dumps.begin(), dumps.end(),
              [](const auto& first, const auto& second) { return compare_age(first, second) < 0; });
    return dumps;
}

void delete_dump(const std::wstring& path) {
    const std::string shown = text::wide_to_utf8(path);
    if (!DeleteFileW(path.c_str())) {
        const DWORD code = GetLastError();
        exc::raise_win_error(code, exc::format_message("Old dump cannot be removed. Dump path: [%1].", shown));
    }
    logging::ormacon_tool.info(exc::format_message("Dump [%1] deleted.", shown));
}

bool try_delete_dump(const std::wstring& path) try {
    delete_dump(path);
    return true;
} catch (const std::exception& failure) {
    logging::log_exception(logging::ormacon_tool, failure);
    return false;
}

}  // namespace

void cleanup_dumps(const std::wstring& folder, std::size_t maximum_count) {
    const std::vector<WIN32_FIND_DATAW> dumps = dumps_oldest_first(folder);
    std::size_t count = dumps.size();
    for (const WIN32_FIND_DATAW& dump : dumps) {
        if (count < maximum_count) return;
        if (try_delete_dump(folder + L"\\" + dump.cFileName)) --count;
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
    return folder + L"\\" + begin + std::to_wstring(first_free_identifier(taken));
}

}  // namespace crash
