// Which repositories an answer such as "1 3" selects, and which answer stands for a selection.
#pragma once

#include <string>
#include <vector>

#include "conf_tool/configuration.h"

namespace wizard {

inline constexpr int standard_edition = 1;  // Oracle SE: one repository at the most

// The numbers, counted from 1 and joined with blanks, that the selected repositories have among the offered ones.
// Selected ones that are not offered any more are left out.
std::wstring SelectionText(const std::vector<conf_tool::RepositoryEntry>& selected,
                           const std::vector<conf_tool::RepositoryEntry>& offered);

// The offered repositories at the numbers of the answer, in the order typed. Single blanks separate the numbers;
// empty tokens between blanks count for nothing. Logs "Validating value". Raises exc::runtime_exc_t:
// "Cannot convert value [%1] from string", "Same Tovak repository was specified more than once (%1)",
// "Unable to use more than one repository due to a limitation of Oracle Standard Edition (SE)",
// "Incorrect repository value: %1".
std::vector<conf_tool::RepositoryEntry> SelectRepositories(const std::wstring& answer,
                                                           const std::vector<conf_tool::RepositoryEntry>& offered,
                                                           int scope_edition);

}  // namespace wizard
