// Counts what the program takes from the heap. The functions of counted_memory.cpp stand in for the run-time library's
// by the linker's --wrap, so that the libraries linked are counted too.
#pragma once

#include <cstddef>

namespace benchmarks {

// From here on the peak is counted anew.
void restart_peak() noexcept;

// The most bytes at a time since restart_peak(), beyond those that were in use then.
std::size_t peak_growth() noexcept;

}  // namespace benchmarks
