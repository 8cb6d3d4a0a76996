#include "conf_tool/configuration.h"

#include <array>
#include <cstdio>

#include "common/platform/wipe.h"

namespace conf_tool {

std::string SizeText(double bytes) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.15g", bytes);
    return text.data();
}

ConfigurationSnapshot::~ConfigurationSnapshot() { platform::wipe(password); }

}  // namespace conf_tool
