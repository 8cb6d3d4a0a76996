// Which files in the dump folder are dumps, and which of them are deleted to make room.
#pragma once

#include <utility>

#include "common/platform/owned.h"

namespace crash {

inline constexpr const wchar_t* dump_pattern = L"*_crash_*";
inline constexpr const wchar_t* minidump_ending = L".mdmp";
inline constexpr const wchar_t* legacy_report_ending = L"-exceptions.log";

// For an entry that matches the pattern. Upper and lower case are the same, as they are to the file system.
bool is_dump(const WIN32_FIND_DATAW& entry);

// Returns a negative value when the first one was written before the second; names decide between equal times.
int compare_age(const WIN32_FIND_DATAW& first, const WIN32_FIND_DATAW& second);

// Calls visit() for each dump that fits the path, which has wildcards. The dump is *entry; visit() may exchange the
// pointer to keep it.
template <class Visit>
void for_each_dump(const wchar_t* path, WIN32_FIND_DATAW*& entry, const Visit& visit) {
    const platform::unique_find search(FindFirstFileW(path, entry));
    if (!search) return;
    do {
        if (is_dump(*entry)) visit();
    } while (FindNextFileW(search.get(), entry));
}

// Makes room for one more dump among those that fit the path: calls delete_dump(name) for the oldest ones until fewer
// than max_dumps are left. It returns whether the dump is gone; otherwise the next oldest one follows. Returns how many
// are left.
template <class DeleteDump>
ULONG64 delete_old_dumps(const wchar_t* path, ULONG64 max_dumps, const DeleteDump& delete_dump) {
    // Entries are exchanged: copying them would need a runtime.
    WIN32_FIND_DATAW buffers[3];
    WIN32_FIND_DATAW* entry = &buffers[0];
    WIN32_FIND_DATAW* oldest = &buffers[1];
    WIN32_FIND_DATAW* last_tried = &buffers[2];
    last_tried->ftLastWriteTime = {0, 0};  // older than all others
    last_tried->cFileName[0] = L'\0';

    // Counted once: a file that another program is still reading is listed after its deletion as well.
    ULONG64 count = 0;
    for_each_dump(path, entry, [&count] { ++count; });
    while (count >= max_dumps) {
        bool found = false;
        for_each_dump(path, entry, [&] {
            if (compare_age(*entry, *last_tried) <= 0 || (found && compare_age(*entry, *oldest) > 0)) return;
            std::swap(entry, oldest);
            found = true;
        });
        if (!found) break;
        if (delete_dump(static_cast<const wchar_t*>(oldest->cFileName))) --count;
        std::swap(oldest, last_tried);
    }
    return count;
}

}  // namespace crash
