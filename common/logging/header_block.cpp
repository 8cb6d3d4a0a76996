#include "common/logging/header_block.h"

#include "common/exc/format_message.h"
#include "common/logging/separators.h"
#include "common/platform/module.h"
#include "common/platform/os_version.h"
#include "common/platform/version_resource.h"
#include "common/text/convert.h"
#include "common/win32.h"

namespace logging {

std::string header_block() {
    const std::wstring program = platform::program_path();
    const platform::version_resource_t version = platform::read_version_resource(program);
    return exc::format_message(
        "%1\n"
        "Path to the executable module: %2\n"
        "Module version: %3\n"
        "Comments: %4\n"
        "Process Id: %5\n"
        "OS version: %6\n"
        "%1",
        {block_separator, text::wide_to_utf8(program), version.file_version, version.comments,
         std::to_string(GetCurrentProcessId()), platform::os_version_text()});
}

}  // namespace logging
