// What the library handed out, what came back, and how often each function was called.
//
// When the environment variable ORMACON_DEMO_REPORT names a file, the file holds these numbers at any time: it is
// rewritten at every change, so that it tells the truth also after the program was ended from outside.
//
//     texts=<handed out>/<given back> arrays=<handed out>/<given back> wrong=<frees of something not handed out>
//     <function>=<calls>        (one line for each function that was called)
//
// Counting starts at 0 with each loading of the library. Not for several threads, like the whole library.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "conf_tool/library_interface.h"
#include "demo_library/configuration.h"

namespace demo_library {

// The caller owns the result until it comes back through FreeString or FreeRepositories.
wchar_t* hand_out(std::wstring_view text);
conf_tool::LibraryRecords hand_out(const std::vector<repository_t>& repositories);

// The same into the places of a caller. Raise failure_t for a place that is null; nothing is handed out then.
void hand_out(std::wstring_view text, conf_tool::LibraryText* place);
void hand_out(const std::vector<repository_t>& repositories, conf_tool::LibraryRecords* records, std::int32_t* count);

// The text is overwritten first: it may be a password. Null is allowed; anything else that is not handed out at the
// moment is counted as wrong and left alone. A wrong count of records is counted as wrong, too.
void take_back(wchar_t* text) noexcept;
void take_back(conf_tool::LibraryRecords records, std::int32_t count) noexcept;

// Returns which call of this function this is, from 1; 0 when there is no memory to count it.
std::uint32_t count_call(const char* function) noexcept;

}  // namespace demo_library
