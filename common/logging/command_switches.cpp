#include "common/logging/command_switches.h"

#include <string_view>

#include "common/exc/raise.h"
#include "common/platform/owned.h"

#include <shellapi.h>

namespace logging {
namespace {

struct argument_list_holder_t {
    using type = wchar_t**;
    static type invalid() noexcept { return nullptr; }
    static void close(type value) noexcept { LocalFree(value); }
};

}  // namespace

command_switches_t find_switches(const wchar_t* command_line) {
    int count = 0;
    const platform::unique_t<argument_list_holder_t> arguments(CommandLineToArgvW(command_line, &count));
    if (!arguments) exc::raise_win_error(GetLastError(), "Cannot split the command line.");
    command_switches_t found;
    for (int i = 1; i < count; ++i) {
        const std::wstring_view argument = arguments.get()[i];
        found.echo |= argument == L"-log";
        found.verbose |= argument == L"-verbose";
    }
    return found;
}

}  // namespace logging
