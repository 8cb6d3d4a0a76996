// The simulated backup server and its faults: built-in values, or the file that the environment variable
// ORMACON_DEMO_SCENARIO names (scenario.sample.xml describes it).
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "demo_library/configuration.h"

namespace demo_library {

enum class crash_t { none, access_violation, exception };

// How an exported function misbehaves.
struct fault_t {
    std::optional<std::wstring> text;  // it fails with this text
    bool silent = false;               // it fails without a text
    crash_t crash = crash_t::none;
    std::uint32_t delay = 0;                    // milliseconds before it does anything
    std::optional<std::uint32_t> console_mode;  // it leaves the console's input in this mode
    std::optional<std::uint32_t> first;         // only this many calls misbehave, the first ones
};

struct scenario_t {
    std::int32_t edition = 2;  // 1: Oracle Standard Edition
    std::int32_t min_parallelism = 1;
    std::int32_t max_parallelism = 64;
    std::vector<repository_t> repositories;
    std::int32_t map_code = 0;
    std::wstring map_text;
    std::map<std::string, fault_t, std::less<>> faults;  // by the name of the exported function
};

// Reads the file at every call, so that a demonstration can change the server while the tool runs. Throws error_t
// when the file is missing or wrong.
scenario_t load_scenario();

}  // namespace demo_library
