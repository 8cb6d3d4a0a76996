#include "conf_tool/configuration.h"

#include <limits>
#include <locale>
#include <sstream>

#include "common/text/wipe.h"

namespace conf_tool {

std::string SizeText(double bytes) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream.precision(std::numeric_limits<double>::digits10);
    stream << bytes;
    return stream.str();
}

ConfigurationSnapshot::~ConfigurationSnapshot() { text::wipe(password); }

}  // namespace conf_tool
