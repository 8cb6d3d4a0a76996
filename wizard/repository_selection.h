// Repositories and the numbers that the user types for them.
#pragma once

#include <string>
#include <vector>

#include "conf_tool/configuration.h"

namespace wizard {

// Returns the offered repositories at the numbers of an answer such as "1 3", in the order typed. Logs the validation.
// Throws exc::runtime_exc_t for a word that is no number, a number given twice, several in Standard Edition, and a
// number that is not offered, in this order.
std::vector<conf_tool::RepositoryEntry> SelectRepositories(const std::wstring& answer,
                                                           const std::vector<conf_tool::RepositoryEntry>& offered,
                                                           conf_tool::Edition edition);

// The reverse: returns the numbers of the selected repositories among the offered ones. Leaves out repositories that
// are no longer offered.
std::wstring SelectionText(const std::vector<conf_tool::RepositoryEntry>& selected,
                           const std::vector<conf_tool::RepositoryEntry>& offered);

}  // namespace wizard
