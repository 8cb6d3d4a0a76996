#include <string>
#include <vector>

#include "app/run.h"
#include "common/encoding/convert.h"
#include "common/platform/wipe.h"
#include "common/win32.h"

// The program expands no wildcards: an account such as "CORP\ora*" is passed unchanged.
extern "C" {
int _dowildcard = 0;  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the runtime's name
}

namespace {

// Wipes the runtime's copy.
std::string TakeNarrow(wchar_t* argument) {
    std::wstring wide(argument);
    const platform::wipe_at_exit_t wipe_wide(wide);
    SecureZeroMemory(argument, wide.size() * sizeof(wchar_t));
    return encoding::wide_to_utf8(wide);
}

}  // namespace

// A command reports its outcome on the console. Where this function returns, the exit status is 0: fixed from outside.
extern "C" int wmain(int argc, wchar_t** wargv) {
    std::vector<std::string> arguments;  // a password may be among them
    std::vector<const char*> argv;
    arguments.reserve(static_cast<std::size_t>(argc));  // growing would leave copies behind
    for (int i = 0; i < argc; ++i) {
        std::string argument = TakeNarrow(wargv[i]);
        const platform::wipe_at_exit_t wipe_argument(argument);
        arguments.push_back(argument);
        argv.push_back(arguments.back().c_str());
    }
    argv.push_back(nullptr);
    app::Run(argc, argv.data());
    for (std::string& argument : arguments) platform::wipe(argument);
    return 0;
}
