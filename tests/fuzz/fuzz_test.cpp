#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <random>

#include <gtest/gtest.h>

#include "tests/fuzz/fuzz_units.h"

namespace {

std::string what_runs;

// Words of the unit, and runs of any one character.
std::string random_input(const fuzz::unit_t& unit, unsigned seed) {
    std::mt19937 engine(seed);
    std::string input;
    for (std::size_t left = engine() % 24; left > 0; --left) {
        const std::string& word = unit.words[engine() % unit.words.size()];
        input += engine() % 4 > 0 ? word : std::string(engine() % 20, static_cast<char>(engine()));
    }
    return input;
}

// Catches what ends the program: a failed assertion, the trap of undefined behaviour, a wild pointer.
void name_the_input(int) {
    std::fputs(what_runs.c_str(), stderr);
    std::_Exit(1);
}

TEST(Fuzz, HoldsForRandomInputs) {
    for (const int fault : {SIGABRT, SIGILL, SIGSEGV}) std::signal(fault, name_the_input);
    for (const fuzz::unit_t& unit : fuzz::units) {
        for (unsigned seed = 1; seed <= 4000; ++seed) {
            const std::string input = random_input(unit, seed);
            what_runs = unit.name + (", seed " + std::to_string(seed)) + ": " + testing::PrintToString(input);
            ASSERT_NO_THROW(unit.check(input)) << what_runs;
        }
    }
}

}  // namespace
