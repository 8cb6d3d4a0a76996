// Converts between answers such as "1 3" and repositories.
#pragma once

#include <string>
#include <vector>

#include "conf_tool/configuration.h"

namespace wizard {

inline constexpr int standard_edition = 1;  // Oracle SE: only one repository

// Returns the numbers of the selected repositories among the offered ones, counted from 1 and separated by spaces.
// Leaves out repositories that are no longer offered.
std::wstring SelectionText(const std::vector<conf_tool::RepositoryEntry>& selected,
                           const std::vector<conf_tool::RepositoryEntry>& offered);

// Returns the offered repositories at the numbers of the answer, in the order typed. Spaces separate the numbers. Logs
// "Validating value". Throws exc::runtime_exc_t:
// "Cannot convert value [%1] from string", "Same Tovak repository was specified more than once (%1)",
// "Unable to use more than one repository due to a limitation of Oracle Standard Edition (SE)",
// "Incorrect repository value: %1".
std::vector<conf_tool::RepositoryEntry> SelectRepositories(const std::wstring& answer,
                                                           const std::vector<conf_tool::RepositoryEntry>& offered,
                                                           int scope_edition);

}  // namespace wizard
