#pragma once

#include "common/logging/component.h"

namespace plugin {

inline constexpr logging::component_t plugin_common("plugin_common");

}  // namespace plugin
