#pragma once

#include <string>

namespace demo_library {

// Whether the text has the form of an IPv4 address, an IPv6 address (with or without a zone) or a host name. Names may
// contain letters of every script. Nothing is looked up.
bool is_plausible_host(const std::wstring& host);

}  // namespace demo_library
