#pragma once

namespace crash {

// Directs every way in which this process can die to crash::die(): exceptions of the processor and the system that
// nobody handles, std::terminate, a pure virtual call, abort, an invalid parameter of the C runtime, and heap
// corruption, which the system reports past the unhandled-exception filter. No dialog window appears.
void install_fatal_hooks() noexcept;

}  // namespace crash
