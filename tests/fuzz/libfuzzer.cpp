// One unit as a libFuzzer program. Windows functions that the units call are replaced in the simplest way.
#include <algorithm>
#include <random>

#include "common/exc/raise.h"
#include "common/logging/component.h"
#include "tests/fuzz/fuzz_units.h"

std::uint32_t exc::current_thread_id() noexcept { return 9; }
void logging::component_t::log(const record_t&) const noexcept {}

static const fuzz::unit_t& unit() {
    return *std::ranges::find(fuzz::units, std::string(FUZZ_UNIT), &fuzz::unit_t::name);
}

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);

// Inserts a word of the unit now and then; otherwise leaves the bytes to libFuzzer.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                               unsigned seed) {
    std::minstd_rand engine(seed);
    const std::string& word = unit().words[engine() % unit().words.size()];
    if (engine() % 4 != 0 || size + word.size() > max_size) return LLVMFuzzerMutate(data, size, max_size);
    const std::size_t at = engine() % (size + 1);
    std::copy_backward(data + at, data + size, data + size + word.size());
    std::ranges::copy(word, data + at);
    return size + word.size();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    unit().check(std::string(data, data + size));
    return 0;
}
