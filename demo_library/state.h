// The configuration of this host in its file: OrmaconDemoState.xml beside the library, or the file that the
// environment variable ORMACON_DEMO_STATE names. A lock file beside it (with ".lock" appended) keeps the processes
// apart that use it at the same time; only remove_state() removes the lock file. All functions throw failure_t with the
// path, also when another process keeps the lock for five seconds.
#pragma once

#include <functional>
#include <string>

#include "demo_library/configuration.h"

namespace demo_library {

std::wstring state_path();

// A host without the file is unconfigured.
configuration_t load_state();

// Loads the configuration, calls change with it and saves it. No other process can change it in between. Nothing is
// saved when change throws.
void change_state(const std::function<void(configuration_t&)>& change);

// Removes the file, and what killed processes left of their attempts to write it.
void remove_state();

}  // namespace demo_library
