// The configuration of this host in its file: OrmaconDemoState.xml beside the library, or the file that the
// environment variable ORMACON_DEMO_STATE names.
#pragma once

#include <string>

#include "demo_library/configuration.h"

namespace demo_library {

std::wstring state_path();

// A host without the file is unconfigured. All raise failure_t with the path.
configuration_t load_state();
void save_state(const configuration_t& configuration);
void remove_state();

}  // namespace demo_library
