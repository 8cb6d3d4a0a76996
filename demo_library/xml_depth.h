#pragma once

#include <string_view>

namespace demo_library::xml {

// The XML parser calls itself once for each level of elements, so a deep document would overflow the stack. Throws
// failure_t for one with more than 32 levels, and for "<" within a tag: nobody knows what the parser makes of that.
// The content must be valid UTF-8: the parser takes a broken character and the markup after it for one.
void require_flat(std::string_view content);

}  // namespace demo_library::xml
