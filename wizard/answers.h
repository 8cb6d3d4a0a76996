// From what the user typed to values.
#pragma once

#include <string>

namespace wizard {

// A whole decimal number of 32 bits with an optional sign and nothing else. Raises std::bad_cast.
int ParseInt(const std::wstring& text);

// ParseInt with the failure that the user is shown: exc::runtime_exc_t "Cannot convert value [%1] from string".
int ConvertAnswer(const std::wstring& answer);

struct Account {
    std::wstring domain;
    std::wstring user_name;
};

// "domain\user", or "user" with an empty domain ("user@domain" is such a user). Raises exc::runtime_exc_t
// "Failed to parse domain and username" for a text with more than one backslash.
Account SplitAccount(const std::wstring& text);

}  // namespace wizard
