// Records the memory that the tool must give back, what it has given back, and how often it called each function.
//
// When the environment variable ORMACON_DEMO_REPORT names a file, that file is rewritten at every change, so that it is
// up to date even after the program was killed:
//
//     texts=<allocated>/<freed> arrays=<allocated>/<freed> wrong=<frees of anything else>
//     <function>=<calls>        (one line for each function that was called)
//
// Counting starts at 0 whenever the library is loaded. Like the whole library, this is not thread-safe.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "conf_tool/library_interface.h"
#include "demo_library/configuration.h"

namespace demo_library {

// Returns a copy that lives until it is released through FreeString or FreeRepositories.
wchar_t* allocate(std::wstring_view text);
conf_tool::LibraryRecords allocate(const std::vector<repository_t>& repositories);

// The same for an exported function's out-arguments. Throws error_t, without allocating, when one of them is null.
void return_copy(std::wstring_view text, conf_tool::LibraryText* out);
void return_copy(const std::vector<repository_t>& repositories, conf_tool::LibraryRecords* records,
                 std::int32_t* count);

// Overwrites a text before it frees it: it may be a password. Null is allowed. Any other address that is not allocated
// at the moment is counted as wrong and ignored; a wrong count of records is counted as wrong, too.
void release(wchar_t* text) noexcept;
void release(conf_tool::LibraryRecords records, std::int32_t count) noexcept;

// Returns the number of this call of the function, from 1; 0 when there is no memory to count it.
std::uint32_t count_call(const char* function) noexcept;

}  // namespace demo_library
