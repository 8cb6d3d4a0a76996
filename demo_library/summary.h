#pragma once

#include <string>

#include "demo_library/configuration.h"

namespace demo_library {

// Returns the values for the administrator to read, without the password. Lines end in "\r\n".
std::wstring summary(const configuration_t& configuration);

}  // namespace demo_library
