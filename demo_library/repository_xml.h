// Configuration and repositories as XML elements: the state file, the exported settings and the scenario share them.
#pragma once

#include "demo_library/configuration.h"
#include "demo_library/xml.h"

namespace demo_library {

void write_repository(TiXmlElement& element, const repository_t& repository);
repository_t read_repository(const TiXmlElement& element);

// Writes everything except the password. Returns the element of the account.
TiXmlElement& write_configuration(TiXmlElement& root, const configuration_t& configuration);

// Returns all children named Repository, in their order.
std::vector<repository_t> read_repositories(const TiXmlElement& parent);

}  // namespace demo_library
