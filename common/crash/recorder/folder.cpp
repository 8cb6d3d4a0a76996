#include "common/crash/recorder/folder.h"

#include "common/crash/recorder/dump_names.h"
#include "common/win32.h"

namespace recorder {
namespace {

struct dump_t {
    FILETIME written;
    wchar_t name[MAX_PATH];
};

// Without a runtime there is no support for large frames; one thread uses these.
wchar_t path_buffer[longest_path];
WIN32_FIND_DATAW entry;
dump_t oldest;
dump_t last_tried;

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

bool ends_with(const wchar_t* name, const wchar_t* ending) {
    const int length = lstrlenW(name);
    const int ending_length = lstrlenW(ending);
    return length >= ending_length && lstrcmpiW(name + length - ending_length, ending) == 0;
}

bool is_dump() {
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 &&
           (ends_with(entry.cFileName, crash::minidump_ending) ||
            ends_with(entry.cFileName, crash::legacy_report_ending));
}

// Below 0 when the entry was written before the dump; the names decide between equal times.
int compare_entry(const dump_t& dump) {
    const LONG order = CompareFileTime(&entry.ftLastWriteTime, &dump.written);
    return order != 0 ? static_cast<int>(order) : lstrcmpW(entry.cFileName, dump.name);
}

struct survey_t {
    unsigned count;
    bool has_oldest;
};

// Counts the dumps and finds the oldest of those that have not been tried yet.
survey_t survey(const wchar_t* pattern) {
    survey_t result = {0, false};
    const HANDLE search = FindFirstFileW(pattern, &entry);
    if (search == INVALID_HANDLE_VALUE) return result;
    do {
        if (!is_dump()) continue;
        ++result.count;
        if (compare_entry(last_tried) <= 0 || (result.has_oldest && compare_entry(oldest) > 0)) continue;
        oldest.written = entry.ftLastWriteTime;
        lstrcpynW(oldest.name, entry.cFileName, MAX_PATH);
        result.has_oldest = true;
    } while (FindNextFileW(search, &entry));
    FindClose(search);
    return result;
}

void take_oldest() {
    last_tried.written = oldest.written;
    lstrcpynW(last_tried.name, oldest.name, MAX_PATH);
}

}  // namespace

bool create_folder(wchar_t* folder) {
    if (is_folder(folder) || CreateDirectoryW(folder, nullptr)) return true;
    if (GetLastError() != ERROR_PATH_NOT_FOUND || !create_parent(folder)) return is_folder(folder);
    return CreateDirectoryW(folder, nullptr) || is_folder(folder);
}

bool delete_old_dumps(const ntdll_t& functions, const wchar_t* folder, unsigned most) {
    for (;;) {
        if (!print(functions, path_buffer, longest_path, L"%ls\\%ls", folder, crash::dump_pattern)) return false;
        const survey_t state = survey(path_buffer);
        if (state.count < most) return true;
        if (!state.has_oldest) return false;
        take_oldest();
        if (!print(functions, path_buffer, longest_path, L"%ls\\%ls", folder, oldest.name)) return false;
        DeleteFileW(path_buffer);
    }
}

}  // namespace recorder
