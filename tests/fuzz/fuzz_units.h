// Fuzzing: for each unit a check that takes any bytes and throws std::logic_error if a property is violated. The test
// program feeds the checks from a seeded generator, the programs of the fuzz build from libFuzzer.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "common/exc/exceptions.h"

namespace fuzz {

using check_t = void(const std::string& input);
check_t check_exception, check_format, check_lines, check_selection, check_settings, check_shown;

struct unit_t {
    const char* name;
    check_t* check;
    std::vector<std::string> words;  // worth mixing into random bytes
};
const std::vector<unit_t>& units();

// Returns the texts between the separators, at least this many.
std::vector<std::string> pieces(const std::string& text, char separator, std::size_t least = 0);

inline void require(bool holds, const char* property) {
    if (!holds) throw std::logic_error(property);
}

template <class Call>
bool refuses(Call call) try {
    call();
    return false;
} catch (const exc::runtime_exc_t&) {
    return true;
}

}  // namespace fuzz
