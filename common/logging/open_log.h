// Opening of the process-wide log with everything that initialise() takes from the system given by the caller.
#pragma once

#include <string>

#include "common/logging/command_switches.h"
#include "common/logging/component.h"
#include "common/logging/log_settings.h"

namespace logging {

struct log_options_t {
    std::wstring path;  // of the first file of the set, ending in ".log"
    size_limits_t limits;
    command_switches_t switches;
};

// Closes the present log, creates the directory, opens the first free file of the set, attaches file and echo, and
// writes the header block. What cannot be archived later is reported through the component. Raises as initialise()
// does, without "Cannot init logging".
void open_log(const component_t& component, const log_options_t& options);

// Ends copying and echo and closes the file; the level filter is the default one again. Happens by itself when the
// process ends, after all other objects with static storage are gone.
void close_log() noexcept;

}  // namespace logging
