// The folder that contains the dumps.
#pragma once

#include <cstddef>
#include <set>
#include <string>

#include "common/logging/component.h"
#include "common/platform/owned.h"

namespace crash {

// While it exists, Windows lets nobody rename or delete the folder or those above it.
struct dump_folder_t {
    platform::unique_file parent;
    platform::unique_file folder;
};

// Opens the folder, and creates it if it is missing. Nobody else has access to it from then on, even if it existed (see
// platform::make_private()): any account may be allowed to create files in the folders above it.
//
// Throws exc::runtime_exc_t if the folder is a link, is not where its path leads, or belongs to another account; what
// platform::require_trusted_folder() throws for the folders above it; exc::win_sys_exc_t if the system refuses.
dump_folder_t open_dump_folder(const std::wstring& folder);

// Makes room for one more dump: deletes the oldest ones until fewer than maximum_count are left, and logs each. One
// that cannot be deleted is logged as well, and the next oldest one follows. Other files are left alone. Throws
// exc::runtime_exc_t if too many are left.
void cleanup_dumps(const logging::component_t& component, const std::wstring& folder, std::size_t maximum_count);

// Returns the smallest number from 1 to 10000 that is not in the set. Throws exc::runtime_exc_t if there is none.
unsigned first_free_identifier(const std::set<unsigned>& taken);

// Returns the path with "_", the process id, "_" and the first identifier for which there is no dump of either kind. No
// other process uses the same path, since the process id is part of it. Throws what first_free_identifier() throws.
std::wstring reserve_dump_identifier(const std::wstring& path);

}  // namespace crash
