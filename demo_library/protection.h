// Protection of the password in the state file by the system (CryptProtectData).
#pragma once

#include <string>

#include "demo_library/secret.h"

namespace demo_library {

// As hexadecimal digits, empty for an empty text. Readable on this host alone, but by every account of it: the
// settings belong to the host, and one administrator reads what another has set. The rights of the file keep others
// away. Both raise failure_t with the system's reason.
std::string protect(const secret_t& text);
secret_t unprotect(const std::string& digits);

}  // namespace demo_library
