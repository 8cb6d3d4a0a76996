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

// A password may be among the arguments.
class CNarrowArguments {
public:
    CNarrowArguments(int argc, wchar_t** wargv) {
        arguments_.reserve(static_cast<std::size_t>(argc));  // growing would leave copies behind
        for (int i = 0; i < argc; ++i) {
            std::string argument = TakeNarrow(wargv[i]);
            const platform::wipe_at_exit_t wipe_argument(argument);
            arguments_.push_back(argument);
            pointers_.push_back(arguments_.back().c_str());
        }
        pointers_.push_back(nullptr);
    }
    ~CNarrowArguments() {
        for (std::string& argument : arguments_) platform::wipe(argument);
    }
    CNarrowArguments(const CNarrowArguments&) = delete;
    CNarrowArguments& operator=(const CNarrowArguments&) = delete;

    const char* const* argv() const { return pointers_.data(); }

private:
    std::vector<std::string> arguments_;
    std::vector<const char*> pointers_;
};

}  // namespace

// A command reports its outcome on the console. Where this function returns, the exit status is 0: fixed from outside.
extern "C" int wmain(int argc, wchar_t** wargv) {
    const CNarrowArguments arguments(argc, wargv);
    app::Run(argc, arguments.argv());
    return 0;
}
