#include "app/concealment.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include <boost/algorithm/string/replace.hpp>

#include "app/options.h"

namespace app {
namespace {

// Up to an adjacent value; empty for a word that is no long option.
std::string_view LongName(std::string_view word) {
    return word.starts_with("--") ? word.substr(2, word.find('=') - 2) : std::string_view();
}

// Also with too few dashes, or a slash: what follows is a password all the same.
std::string_view BareName(std::string_view word) {
    word.remove_prefix(std::min(word.find_first_not_of("-/"), word.size()));
    return word.substr(0, word.find('='));
}

// Options may be abbreviated.
bool IsKnown(std::string_view name, const boost::program_options::options_description& options) {
    return !name.empty() && std::ranges::any_of(options.options(), [&](const auto& option) {
        return option->long_name().starts_with(name);
    });
}

// Abbreviations that are not unique count, too.
bool IsCredentials(std::string_view name) {
    return !name.empty() && std::string_view(option_set_credentials).starts_with(name);
}

void Replace(std::string& complaint, std::string_view word, std::string_view shown) {
    if (!word.empty()) boost::replace_all(complaint, "'" + std::string(word) + "'", "'" + std::string(shown) + "'");
}

void Conceal(std::string& complaint, std::string_view word) {
    for (const std::string_view part : {word, word.substr(0, word.find('='))}) Replace(complaint, part, "***");
}

void ConcealValue(std::string& complaint, std::string_view word) {
    if (const std::size_t equal = word.find('='); equal != std::string_view::npos) {
        Replace(complaint, word, std::string(word.substr(0, equal)) + "=***");
    }
}

}  // namespace

std::string ConcealCredentials(std::string complaint, const boost::program_options::options_description& options,
                               int argc, const char* const* argv) {
    const std::vector<std::string_view> words(argv + 1, argv + argc);
    const bool has_credentials = std::ranges::any_of(words, IsCredentials, BareName);
    bool given_to_credentials = false;
    for (const std::string_view word : words) {
        const std::string_view name = LongName(word);
        if (IsKnown(name, options)) {
            given_to_credentials = IsCredentials(name);
        } else if (given_to_credentials || (has_credentials && word.starts_with('-'))) {
            Conceal(complaint, word);
        } else {
            ConcealValue(complaint, word);
        }
    }
    return complaint;
}

}  // namespace app
