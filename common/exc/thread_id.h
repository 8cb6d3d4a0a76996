#pragma once

#include <cstdint>

namespace exc {

// Returns the Win32 id of the calling thread.
std::uint32_t current_thread_id() noexcept;

}  // namespace exc
