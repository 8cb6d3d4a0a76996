// The rules of the simulated server: each function judges a value and takes it over. A refusal is a failure_t that says
// what is wrong and what is allowed; the configuration is unchanged then.
#pragma once

#include <cstdint>

#include "conf_tool/library_interface.h"
#include "demo_library/configuration.h"
#include "demo_library/scenario.h"

namespace demo_library {

constexpr std::size_t most_repositories = 4;  // RMAN makes at most four copies of a backup

void set_host(configuration_t& configuration, const wchar_t* host);
void set_port(configuration_t& configuration, std::int32_t port);
void set_credentials(configuration_t& configuration, const wchar_t* domain, const wchar_t* user_name,
                     const wchar_t* password);
void set_parallelism(configuration_t& configuration, std::int32_t parallelism, const scenario_t& server);

// Takes over what the server says about the repositories of these identifiers; of the records the identifiers alone
// count. The most that is allowed depends on who asks: a wizard knows the edition, a direct command does not.
void set_repositories(configuration_t& configuration, const plug_common::SRepositoryCType* records, std::int32_t count,
                      const scenario_t& server, std::size_t most);

// What a wizard may select at most.
std::size_t most_repositories_in(const scenario_t& server);

// Judges a whole configuration before it is applied or exported.
void require_complete(const configuration_t& configuration, const scenario_t& server);

// "1-64"
std::wstring parallelism_range(const scenario_t& server);

}  // namespace demo_library
