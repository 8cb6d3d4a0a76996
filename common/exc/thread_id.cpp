#include "common/exc/thread_id.h"

#include "common/win32.h"

namespace exc {

std::uint32_t current_thread_id() noexcept { return GetCurrentThreadId(); }

}  // namespace exc
