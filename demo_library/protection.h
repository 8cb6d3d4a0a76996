// Protection of the password in the state file by the system (CryptProtectData).
#pragma once

#include <string>
#include <string_view>

#include "demo_library/secret.h"

namespace demo_library {

// Returns hexadecimal digits, none for an empty password. They are readable only on this host, but by every account of
// it: the settings belong to the host, and one administrator reads what another has set. The rights of the file keep
// others away. Throws failure_t with the system's reason.
std::string protect(std::wstring_view password);

// Throws failure_t, which says how to repair it, for digits that are damaged or were protected on another host.
secret_t unprotect(const std::string& digits);

}  // namespace demo_library
