#include "app/concealment.h"

#include <algorithm>
#include <string_view>

#include <boost/algorithm/string/replace.hpp>

#include "app/options.h"

namespace app {
namespace {

// Up to an adjacent value; empty for a word that is no long option.
std::string_view LongName(std::string_view word) {
    return word.starts_with("--") ? word.substr(2, word.find('=') - 2) : std::string_view();
}

// Options may be abbreviated.
bool IsKnown(std::string_view name, const boost::program_options::options_description& options) {
    return !name.empty() && std::ranges::any_of(options.options(), [&](const auto& option) {
        return option->long_name().starts_with(name);
    });
}

void Conceal(std::string& complaint, std::string_view word) {
    for (const std::string_view part : {word, word.substr(0, word.find('='))}) {
        if (!part.empty()) boost::replace_all(complaint, "'" + std::string(part) + "'", "'***'");
    }
}

}  // namespace

std::string ConcealCredentials(std::string complaint, const boost::program_options::options_description& options,
                               int argc, const char* const* argv) {
    bool given_to_credentials = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view name = LongName(argv[i]);
        if (IsKnown(name, options)) {
            given_to_credentials = std::string_view(option_set_credentials).starts_with(name);
        } else if (given_to_credentials) {
            Conceal(complaint, argv[i]);
        }
    }
    return complaint;
}

}  // namespace app
