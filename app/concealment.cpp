#include "app/concealment.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <vector>

#include <boost/algorithm/string/replace.hpp>

#include "app/options.h"

namespace app {
namespace {

// Without its marks and its value.
std::string_view NameOf(std::string_view word) {
    word.remove_prefix(std::min(word.find_first_not_of("-/"), word.size()));
    return word.substr(0, word.find('='));
}

bool IsOption(std::string_view word) {
    return word.starts_with("--") && word.size() > 2 && std::isalpha(static_cast<unsigned char>(word[2])) != 0;
}

// An abbreviation of set-credentials with dashes or a slash, or its whole name without.
bool IsCredentials(std::string_view word) {
    const std::string_view name = NameOf(word);
    const std::string_view whole = option_set_credentials;
    const bool is_marked = word.starts_with('-') || word.starts_with('/');
    return name == whole || (is_marked && !name.empty() && whole.starts_with(name));
}

void Replace(std::string& complaint, std::string_view word, const std::string& shown) {
    if (!word.empty()) boost::replace_all(complaint, "'" + std::string(word) + "'", "'" + shown + "'");
}

}  // namespace

std::string ConcealCredentials(std::string complaint, int argc, const char* const* argv) {
    bool given_to_credentials = false;
    for (const std::string_view word : std::vector<std::string_view>(argv + 1, argv + argc)) {
        const std::string_view name = word.substr(0, word.find('='));
        if (given_to_credentials && !IsOption(word)) {
            Replace(complaint, word, "***");
            Replace(complaint, name, "***");
        } else {
            given_to_credentials = IsCredentials(word);
            if (word.starts_with('-') && name != word) Replace(complaint, word, std::string(name) + "=***");
        }
    }
    return complaint;
}

}  // namespace app
