// The file that stores the configuration of this host: OrmaconDemoState.xml in the library's folder, or the file that
// the environment variable ORMACON_DEMO_STATE names. A lock file beside it (with ".lock" appended) lets only one
// process use it at a time; only remove_state() removes the lock file. On failure, every function throws failure_t with
// the path, also if another process holds the lock for five seconds.
#pragma once

#include <functional>
#include <string>

#include "demo_library/configuration.h"

namespace demo_library {

std::wstring state_path();

// Returns the initial values if there is no file: the host has not been configured.
configuration_t load_state();

// Loads the configuration, calls change with it, and saves it. No other process can change it in between. If change
// throws, nothing is saved.
void change_state(const std::function<void(configuration_t&)>& change);

// Removes the file, and the temporary files of processes that were killed while they wrote it.
void remove_state();

}  // namespace demo_library
