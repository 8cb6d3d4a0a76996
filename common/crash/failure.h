// What is known of the crash that ends this process.
#pragma once

#include <cstdint>

#include "common/win32.h"

namespace crash {

// Codes of failures that the C++ runtime reports and for which Windows has none.
inline constexpr std::uint32_t terminate_code = 0xE0000001;          // std::terminate: an exception that nobody caught
inline constexpr std::uint32_t pure_call_code = 0xE0000002;          // a call of a pure virtual function
inline constexpr std::uint32_t abort_code = 0x40000015;              // STATUS_FATAL_APP_EXIT
inline constexpr std::uint32_t heap_corruption_code = 0xC0000374;    // STATUS_HEAP_CORRUPTION
inline constexpr std::uint32_t invalid_parameter_code = 0xC0000417;  // STATUS_INVALID_CRUNTIME_PARAMETER

struct failure_t {
    std::uint32_t code;  // becomes the exit status of the process
    std::uint32_t thread_id;
    EXCEPTION_POINTERS* pointers;  // valid until the process ends
};

}  // namespace crash
