#include "wizard/answers.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <optional>
#include <set>

#include "tests/fuzz/fuzz_units.h"
#include "wizard/repository_selection.h"

namespace fuzz {
namespace {

std::wstring wide(const std::string& text) { return std::wstring(text.begin(), text.end()); }

std::optional<int> plain_integer(const std::string& text) {
    const std::size_t sign = text.starts_with('+') || text.starts_with('-') ? 1 : 0;
    if (text.size() == sign || text.find_first_not_of("0123456789", sign) != std::string::npos) return {};
    const long long value = std::strtoll(text.c_str(), nullptr, 10);
    return value < INT_MIN || value > INT_MAX ? std::nullopt : std::optional(static_cast<int>(value));
}

}  // namespace

void check_integer(const std::string& input) {
    std::optional<int> value;
    refuses([&] { value = wizard::ConvertAnswer(wide(input)); });
    require(value == plain_integer(input), "accepts only decimal 32-bit integers");
    require(!value || wizard::ParseInt(std::to_wstring(*value)) == *value, "the number's own text gives it");
}

void check_account(const std::string& input) {
    const auto backslashes = std::ranges::count(input, '\\');
    wizard::Account account;
    require(refuses([&] { account = wizard::SplitAccount(wide(input)); }) == (backslashes > 1), "refuses two or more");
    if (backslashes > 1) return;
    require(backslashes == 1 || account.domain.empty(), "without a backslash there is no domain");
    require(account.domain + wide(backslashes == 1 ? "\\" : "") + account.user_name == wide(input), "can be joined");
}

// The answer, anything for the Standard Edition, and a character for each repository offered.
void check_selection(const std::string& input) {
    const std::vector<std::string> parts = pieces(input, '|', 3);
    const int edition = parts[1].empty() ? 2 : wizard::standard_edition;
    std::vector<conf_tool::RepositoryEntry> offered(parts[2].size()), selected;
    for (std::size_t i = 0; i < offered.size(); ++i) offered[i].id = std::to_wstring(i + 1);
    std::vector<int> numbers;
    for (const std::string& token : pieces(parts[0], ' ')) {
        if (!token.empty()) numbers.push_back(plain_integer(token).value_or(0));
    }
    const bool allowed = (numbers.size() <= 1 || edition != wizard::standard_edition) &&
                         std::set(numbers.begin(), numbers.end()).size() == numbers.size() &&
                         std::ranges::all_of(numbers, [&](int n) { return n >= 1 && n <= std::ssize(offered); });
    const bool refused = refuses([&] { selected = wizard::SelectRepositories(wide(parts[0]), offered, edition); });
    require(refused == !allowed, "obeys the rules");
    const auto is_number = [](const auto& entry, int number) { return entry.id == std::to_wstring(number); };
    require(refused || std::ranges::equal(selected, numbers, is_number), "selects in the order typed");
    std::wstring text;
    for (const int number : numbers) text += (text.empty() ? L"" : L" ") + std::to_wstring(number);
    require(refused || wizard::SelectionText(selected, offered) == text, "has a text with the same numbers");
}

}  // namespace fuzz
