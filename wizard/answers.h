// Turns what the user typed into values.
#pragma once

#include <string>
#include <vector>

#include "conf_tool/configuration.h"

namespace wizard {

// Returns a copy in lower case, for comparing yes/no answers.
std::wstring ToLowerText(const std::wstring& text);

// Returns the number of a text that is a decimal 32-bit integer with an optional sign, and nothing else. Throws
// std::bad_cast.
int ParseInt(const std::wstring& text);

// The same, but throws exc::runtime_exc_t, a failure that the user sees.
int ConvertAnswer(const std::wstring& answer);

struct Account {
    std::wstring domain;
    std::wstring user_name;
};

// Splits "domain\user". A text without a backslash, such as "user@domain", is a user name with an empty domain. Throws
// exc::runtime_exc_t if the text has more than one backslash.
Account SplitAccount(const std::wstring& text);

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
