#include "wizard/repository_selection.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/method_scope.h"
#include "conf_tool/log_component.h"
#include "wizard/answers.h"

namespace wizard {
namespace {

using conf_tool::Edition;
using conf_tool::RepositoryEntry;
using exc::format_message;

struct TypedNumber {
    int number;
    std::wstring token;  // as typed
};

std::vector<TypedNumber> ReadNumbers(const std::wstring& answer) {
    std::vector<TypedNumber> numbers;
    for (std::size_t begin = 0; begin <= answer.size();) {
        const std::size_t end = std::min(answer.find(L' ', begin), answer.size());
        const std::wstring token = answer.substr(begin, end - begin);
        if (!token.empty()) numbers.push_back({ConvertAnswer(token), token});
        begin = end + 1;
    }
    return numbers;
}

void RaiseIfRepeated(std::vector<TypedNumber> numbers) {
    std::ranges::sort(numbers, {}, &TypedNumber::number);
    const auto repeated = std::ranges::adjacent_find(numbers, {}, &TypedNumber::number);
    if (repeated == numbers.end()) return;
    exc::raise(
        format_message("Same Tovak repository was specified more than once (%1)", std::to_string(repeated->number)));
}

void RaiseIfSeveralInStandardEdition(const std::vector<TypedNumber>& numbers, Edition edition) {
    if (edition != Edition::Standard || numbers.size() <= 1) return;
    exc::raise("Unable to use more than one repository due to a limitation of Oracle Standard Edition (SE)");
}

void RaiseIfOutOfRange(const std::vector<TypedNumber>& numbers, std::size_t count) {
    for (const TypedNumber& typed : numbers) {
        if (typed.number >= 1 && static_cast<std::size_t>(typed.number) <= count) continue;
        exc::raise(format_message("Incorrect repository value: %1", encoding::wide_to_utf8(typed.token)));
    }
}

std::vector<TypedNumber> Validate(const std::wstring& answer, std::size_t count, Edition edition) {
    logging::method_scope_t scope(conf_tool::ormacon_tool, "Validating value");
    std::vector<TypedNumber> numbers = ReadNumbers(answer);
    RaiseIfRepeated(numbers);
    RaiseIfSeveralInStandardEdition(numbers, edition);
    RaiseIfOutOfRange(numbers, count);
    scope.succeed();
    return numbers;
}

}  // namespace

std::vector<RepositoryEntry> SelectRepositories(const std::wstring& answer, const std::vector<RepositoryEntry>& offered,
                                                Edition edition) {
    std::vector<RepositoryEntry> selection;
    for (const TypedNumber& typed : Validate(answer, offered.size(), edition)) {
        selection.push_back(offered[static_cast<std::size_t>(typed.number) - 1]);
    }
    return selection;
}

std::wstring SelectionText(const std::vector<RepositoryEntry>& selected, const std::vector<RepositoryEntry>& offered) {
    std::unordered_map<std::wstring_view, std::size_t> numbers;
    numbers.reserve(offered.size());
    for (std::size_t i = 0; i < offered.size(); ++i) numbers.emplace(offered[i].id, i + 1);
    std::wstring text;
    for (const RepositoryEntry& entry : selected) {
        const auto found = numbers.find(entry.id);
        if (found != numbers.end()) text += std::to_wstring(found->second) + L' ';
    }
    if (!text.empty()) text.pop_back();
    return text;
}

}  // namespace wizard
