// Fuzzing: for each unit a check that takes any bytes and throws std::logic_error if a property is violated. The test
// program feeds the checks from a seeded generator, the programs of the fuzz build from libFuzzer.
#pragma once

#include <string>
#include <vector>

namespace fuzz {

struct unit_t {
    const char* name;
    void (*check)(const std::string& input);
    std::vector<std::string> words;  // worth mixing into random bytes
};
extern const std::vector<unit_t> units;

}  // namespace fuzz
