// The lines that set blocks of the log apart.
#pragma once

#include <string_view>

namespace logging {

inline constexpr std::string_view block_separator =
    "=============================================================================";
inline constexpr std::string_view report_separator =
    "//////////////////////////////////////////////////////////////////////////";
static_assert(block_separator.size() == 77 && report_separator.size() == 74);

}  // namespace logging
