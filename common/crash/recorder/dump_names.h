// Which files in the dump folder are dumps, and which of two is the older one. The program and its recorder share this.
#pragma once

#include "common/win32.h"

namespace crash {

inline constexpr const wchar_t* dump_pattern = L"*_crash_*";
inline constexpr const wchar_t* minidump_ending = L".mdmp";
inline constexpr const wchar_t* legacy_report_ending = L"-exceptions.log";

// For an entry that matches the pattern. Upper and lower case are the same, as they are to the file system.
bool is_dump(const WIN32_FIND_DATAW& entry);

// Returns a negative value when the first one was written before the second; names decide between equal times.
int compare_age(const WIN32_FIND_DATAW& first, const WIN32_FIND_DATAW& second);

}  // namespace crash
