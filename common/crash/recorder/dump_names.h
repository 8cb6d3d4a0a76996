// How files in the dump folder are recognised as dumps, and which of two is the older one: one rule for the program
// and for its recorder.
#pragma once

#include "common/win32.h"

namespace crash {

inline constexpr const wchar_t* dump_pattern = L"*_crash_*";
inline constexpr const wchar_t* minidump_ending = L".mdmp";
inline constexpr const wchar_t* legacy_report_ending = L"-exceptions.log";

// For an entry that fits the pattern. Upper and lower case are the same, as they are to the file system.
bool is_dump(const WIN32_FIND_DATAW& entry);

// Below 0 when the first one was written before the second; the names decide between equal times.
int compare_age(const WIN32_FIND_DATAW& first, const WIN32_FIND_DATAW& second);

}  // namespace crash
