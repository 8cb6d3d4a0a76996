// Counts the heap memory of the program. The linker's --wrap replaces the runtime library's functions with those of
// counted_memory.cpp, so memory of linked libraries counts, too.
#pragma once

#include <cstddef>

namespace benchmarks {

// Starts counting the peak anew.
void restart_peak() noexcept;

// Returns the most bytes in use at once since restart_peak(), in addition to those that were in use then.
std::size_t peak_growth() noexcept;

}  // namespace benchmarks
