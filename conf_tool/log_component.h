#pragma once

#include "common/logging/component.h"

namespace conf_tool {

// What the whole program logs on.
inline constexpr logging::component_t ormacon_tool("ormacon_tool");

}  // namespace conf_tool
