// Turns what the user typed into values.
#pragma once

#include <string>

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

}  // namespace wizard
