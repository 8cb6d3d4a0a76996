#include "wizard/answers.h"

#include <algorithm>
#include <cwctype>

#include <boost/lexical_cast.hpp>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"

namespace wizard {

std::wstring ToLowerText(const std::wstring& text) {
    std::wstring lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](wchar_t unit) { return static_cast<wchar_t>(std::towlower(unit)); });
    return lower;
}

int ParseInt(const std::wstring& text) { return boost::lexical_cast<int>(text); }

int ConvertAnswer(const std::wstring& answer) try { return ParseInt(answer); } catch (const std::bad_cast&) {
    exc::raise(exc::format_message("Cannot convert value [%1] from string", encoding::wide_to_utf8(answer)));
}

Account SplitAccount(const std::wstring& text) {
    const std::size_t backslash = text.find(L'\\');
    if (backslash == std::wstring::npos) return {L"", text};
    if (text.find(L'\\', backslash + 1) != std::wstring::npos) exc::raise("Failed to parse domain and username");
    return {text.substr(0, backslash), text.substr(backslash + 1)};
}

}  // namespace wizard
