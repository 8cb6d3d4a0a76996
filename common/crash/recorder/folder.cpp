#include "common/crash/recorder/folder.h"

#include "common/crash/recorder/dump_names.h"
#include "common/win32.h"

namespace recorder {
namespace {

// Without a runtime there is no support for large frames; only one thread uses these. An entry that is kept is swapped
// with the current one, since copying would need the runtime as well.
wchar_t path_buffer[longest_path];
WIN32_FIND_DATAW buffers[3];
WIN32_FIND_DATAW* entry = &buffers[0];
WIN32_FIND_DATAW* oldest = &buffers[1];
WIN32_FIND_DATAW* last_tried = &buffers[2];  // empty at first, and so older than all others

void swap(WIN32_FIND_DATAW*& first, WIN32_FIND_DATAW*& second) {
    WIN32_FIND_DATAW* const kept = first;
    first = second;
    second = kept;
}

bool form_path(const ntdll_t& functions, const wchar_t* folder, const wchar_t* name) {
    return print(functions, path_buffer, longest_path, L"%ls\\%ls", folder, name);
}

// Calls take() for each dump, which is the current entry. Returns false for a path that is too long.
template <class Take>
bool for_each_dump(const ntdll_t& functions, const wchar_t* folder, const Take& take) {
    if (!form_path(functions, folder, crash::dump_pattern)) return false;
    const HANDLE search = FindFirstFileW(path_buffer, entry);
    if (search == INVALID_HANDLE_VALUE) return true;
    do {
        if (crash::is_dump(*entry)) take();
    } while (FindNextFileW(search, entry));
    FindClose(search);
    return true;
}

// Returns false when there is none that has not been tried.
bool find_oldest(const ntdll_t& functions, const wchar_t* folder) {
    bool found = false;
    const auto keep_if_older = [&found] {
        if (crash::compare_age(*entry, *last_tried) <= 0) return;
        if (found && crash::compare_age(*entry, *oldest) > 0) return;
        swap(entry, oldest);
        found = true;
    };
    return for_each_dump(functions, folder, keep_if_older) && found;
}

}  // namespace

bool create_folder(const wchar_t* folder) {
    const DWORD attributes = GetFileAttributesW(folder);
    if (attributes == INVALID_FILE_ATTRIBUTES) return CreateDirectoryW(folder, nullptr);
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool delete_old_dumps(const ntdll_t& functions, const wchar_t* folder, ULONG64 most) {
    // Counted once: a file that another program is still reading is listed after its deletion as well.
    ULONG64 count = 0;
    if (!for_each_dump(functions, folder, [&count] { ++count; })) return false;
    while (count >= most) {
        if (!find_oldest(functions, folder) || !form_path(functions, folder, oldest->cFileName)) return false;
        if (DeleteFileW(path_buffer)) --count;
        swap(oldest, last_tried);
    }
    return true;
}

}  // namespace recorder
