// How files in the dump folder are recognised as dumps.
#pragma once

namespace crash {

inline constexpr const wchar_t* dump_pattern = L"*_crash_*";
inline constexpr const wchar_t* minidump_ending = L".mdmp";
inline constexpr const wchar_t* legacy_report_ending = L"-exceptions.log";

}  // namespace crash
