#include "common/crash/shared/retention.h"

// Compiled for the recorder too, so nothing here needs a C or C++ runtime.

namespace crash {
namespace {

// Below 0, 0 or above 0, as the file system orders names.
int compare(const wchar_t* first, const wchar_t* second) {
    return CompareStringOrdinal(first, -1, second, -1, TRUE) - CSTR_EQUAL;
}

bool ends_with(const wchar_t* name, const wchar_t* ending) {
    const int length = lstrlenW(name);
    const int ending_length = lstrlenW(ending);
    return length >= ending_length && compare(name + length - ending_length, ending) == 0;
}

}  // namespace

bool is_dump(const WIN32_FIND_DATAW& entry) {
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 &&
           (ends_with(entry.cFileName, minidump_ending) || ends_with(entry.cFileName, legacy_report_ending));
}

int compare_age(const WIN32_FIND_DATAW& first, const WIN32_FIND_DATAW& second) {
    const LONG order = CompareFileTime(&first.ftLastWriteTime, &second.ftLastWriteTime);
    return order != 0 ? static_cast<int>(order) : compare(first.cFileName, second.cFileName);
}

}  // namespace crash
