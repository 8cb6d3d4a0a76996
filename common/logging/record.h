// One record on its way to the log.
#pragma once

#include <string_view>

namespace logging {

// Callers pass the number; levels 1 and 2 differ in nothing but the filter.
enum level_t : unsigned {
    level_detail = 0,
    level_info = 1,
    level_notice = 2,
    level_warning = 3,
    level_error = 4,
};

struct record_t {
    unsigned level = level_info;
    bool highlighted = false;
    unsigned depth = 0;         // levels of indentation, two blanks each
    std::string_view prefix{};  // put in front of the level marker
    std::string_view text{};    // UTF-8; line feeds cut it into several lines
};

}  // namespace logging
