#include "common/crash/recorder/folder.h"

#include "common/crash/recorder/dump_names.h"
#include "common/win32.h"

namespace recorder {
namespace {

// Without a runtime there is no support for large frames; one thread uses these. What is kept changes places with the
// entry in hand: copying would need the runtime, too.
wchar_t path_buffer[longest_path];
WIN32_FIND_DATAW buffers[3];
WIN32_FIND_DATAW* entry = &buffers[0];
WIN32_FIND_DATAW* oldest = &buffers[1];
WIN32_FIND_DATAW* last_tried = &buffers[2];  // empty and so older than all before the first one

void swap(WIN32_FIND_DATAW*& first, WIN32_FIND_DATAW*& second) {
    WIN32_FIND_DATAW* const kept = first;
    first = second;
    second = kept;
}

bool is_folder(const wchar_t* path) {
    const DWORD attributes = GetFileAttributesW(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

wchar_t* last_separator(wchar_t* path) {
    wchar_t* separator = nullptr;
    for (; *path != L'\0'; ++path) {
        if (*path == L'\\' || *path == L'/') separator = path;
    }
    return separator;
}

bool create_parent(wchar_t* folder) {
    wchar_t* const separator = last_separator(folder);
    if (separator == nullptr) return false;
    const wchar_t character = *separator;
    *separator = L'\0';
    const bool created = create_folder(folder);
    *separator = character;
    return created;
}

bool form_path(const ntdll_t& functions, const wchar_t* folder, const wchar_t* name) {
    return print(functions, path_buffer, longest_path, L"%ls\\%ls", folder, name);
}

// Calls take() for each dump, which is the entry in hand. False for a folder that is too long.
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

// False when none is left that has not been tried.
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

bool create_folder(wchar_t* folder) {
    if (is_folder(folder) || CreateDirectoryW(folder, nullptr)) return true;
    if (GetLastError() != ERROR_PATH_NOT_FOUND || !create_parent(folder)) return is_folder(folder);
    return CreateDirectoryW(folder, nullptr) || is_folder(folder);
}

bool delete_old_dumps(const ntdll_t& functions, const wchar_t* folder, unsigned most) {
    // Counted once: a file that another program still reads is listed after its deletion, too.
    unsigned count = 0;
    if (!for_each_dump(functions, folder, [&count] { ++count; })) return false;
    while (count >= most) {
        if (!find_oldest(functions, folder) || !form_path(functions, folder, oldest->cFileName)) return false;
        if (DeleteFileW(path_buffer)) --count;
        swap(oldest, last_tried);
    }
    return true;
}

}  // namespace recorder
