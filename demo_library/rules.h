// The rules of the simulated server. Each set function validates a value and then stores it in the configuration. For a
// value that is not allowed it throws error_t, which says what is wrong and what is allowed, and changes nothing.
#pragma once

#include <cstdint>

#include "conf_tool/library_interface.h"
#include "demo_library/configuration.h"
#include "demo_library/scenario.h"

namespace demo_library {

constexpr std::size_t max_repositories = 4;  // RMAN makes at most four copies of a backup

void set_host(configuration_t& configuration, const wchar_t* host);
void set_port(configuration_t& configuration, std::int32_t port);
void set_credentials(configuration_t& configuration, const wchar_t* domain, const wchar_t* user_name,
                     const wchar_t* password);
void set_parallelism(configuration_t& configuration, std::int32_t parallelism, const scenario_t& server);

// Stores what the server says about the repositories with these identifiers; only the identifiers of the records
// count. The allowed number depends on the caller: a wizard knows the edition, a direct command does not.
void set_repositories(configuration_t& configuration, const plug_common::SRepositoryCType* records, std::int32_t count,
                      const scenario_t& server, std::size_t max);

// How many repositories a wizard may select.
std::size_t max_repositories_in(const scenario_t& server);

// Throws error_t unless the configuration may be applied or exported.
void require_complete(const configuration_t& configuration, const scenario_t& server);

// "1-64"
std::wstring parallelism_range(const scenario_t& server);

}  // namespace demo_library
