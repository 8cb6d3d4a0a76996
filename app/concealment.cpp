#include "app/concealment.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include <boost/algorithm/string/replace.hpp>

#include "app/options.h"

namespace app {
namespace {

constexpr std::string_view marks = "-/";

// Without its dashes and its value.
std::string_view NameOf(std::string_view word) {
    word.remove_prefix(std::min(word.find_first_not_of(marks), word.size()));
    return word.substr(0, word.find('='));
}

// An abbreviation of set-credentials with dashes or a slash, or its whole name without.
bool IsCredentials(std::string_view word) {
    const std::string_view name = NameOf(word);
    const std::string_view whole = option_set_credentials;
    return name.size() < word.size() && !name.empty() ? whole.starts_with(name) : name == whole;
}

// An option's name or an abbreviation of it that is not ambiguous.
bool IsKnown(std::string_view word, const boost::program_options::options_description& options) {
    const std::string_view name = NameOf(word);
    if (!word.starts_with("--") || name.empty()) return false;
    const auto has_prefix = [&](const auto& option) { return option->long_name().starts_with(name); };
    const auto is_name = [&](const auto& option) { return option->long_name() == name; };
    return std::ranges::any_of(options.options(), is_name) || std::ranges::count_if(options.options(), has_prefix) == 1;
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
    bool given_to_credentials = false;
    for (const std::string_view word : std::vector<std::string_view>(argv + 1, argv + argc)) {
        if (IsCredentials(word)) {
            given_to_credentials = true;
            ConcealValue(complaint, word);
        } else if (IsKnown(word, options)) {
            given_to_credentials = false;
        } else if (given_to_credentials) {
            Conceal(complaint, word);
        } else if (word.starts_with('-')) {
            ConcealValue(complaint, word);
        }
    }
    return complaint;
}

}  // namespace app
