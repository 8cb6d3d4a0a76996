// The folder that dumps are kept in.
#pragma once

#include <cstddef>
#include <set>
#include <string>

#include "common/crash/recorder/dump_names.h"

namespace crash {

// Makes room for one more dump: deletes the oldest ones until fewer than maximum_count are left, and logs
// "Dump [%1] deleted." for each. One that cannot be deleted is logged as "Old dump cannot be removed.
// Dump path: [%1]." with its error code, and the next oldest one goes in its place. Raises exc::runtime_exc_t "Cannot
// cleanup out of date dumps. There are [%1] dumps stored. Maximum allowed dumps number: [%2]." when there are still
// too many. Files that are no dumps are left alone.
void cleanup_dumps(const std::wstring& folder, std::size_t maximum_count);

// The smallest number from 1 to 10000 that is not among these. Raises exc::runtime_exc_t "All dump identifiers are
// reserved.".
unsigned first_free_identifier(const std::set<unsigned>& taken);

// The path with "_", the process id, "_" and the first identifier behind it for which there is no dump of either kind.
// Nobody else takes it: the process id is part of it. Raises what first_free_identifier() raises.
std::wstring reserve_dump_identifier(const std::wstring& path);

}  // namespace crash
