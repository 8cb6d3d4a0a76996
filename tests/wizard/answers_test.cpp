#include "wizard/answers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/exc/exceptions.h"

namespace {

using namespace wizard;
using testing::ThrowsMessage;

TEST(ConvertAnswer, IsStrictAndNamesTheAnswer) {
    const std::pair<const wchar_t*, int> numbers[] = {{L"7", 7},
                                                      {L"+7", 7},
                                                      {L"-7", -7},
                                                      {L"-0", 0},
                                                      {L"0007", 7},
                                                      {L"2147483647", 2147483647},
                                                      {L"-2147483648", -2147483647 - 1}};
    for (const auto& [text, value] : numbers) EXPECT_EQ(ConvertAnswer(text), value);
    for (const std::string text : {"2147483648", "-2147483649", "4294967297", "99999999999999999999", "", "+", "-",
                                   "+-7", " 7", "7 ", "1 000", "1,000", "0x10", "80x", "7.0"}) {
        EXPECT_THAT([&] { ConvertAnswer(std::wstring(text.begin(), text.end())); },
                    ThrowsMessage<exc::runtime_exc_t>("Cannot convert value [" + text + "] from string"));
    }
    EXPECT_THAT([] { ConvertAnswer(L"\u0667"); },
                ThrowsMessage<exc::runtime_exc_t>("Cannot convert value [\u0667] from string"));
}

TEST(SplitAccount, AtOneBackslash) {
    const struct {
        const wchar_t* text;
        const wchar_t* domain;
        const wchar_t* user_name;
    } cases[] = {
        {L"oracle", L"", L"oracle"}, {L"CORP\\oracle", L"CORP", L"oracle"}, {L"\\oracle", L"", L"oracle"},
        {L"CORP\\", L"CORP", L""},   {L"oracle@corp", L"", L"oracle@corp"}, {L"", L"", L""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(SplitAccount(c.text).domain, c.domain) << c.text;
        EXPECT_EQ(SplitAccount(c.text).user_name, c.user_name) << c.text;
    }
    for (const wchar_t* text : {L"a\\b\\c", L"a\\\\b", L"\\\\"}) {
        EXPECT_THAT([&] { SplitAccount(text); },
                    ThrowsMessage<exc::runtime_exc_t>("Failed to parse domain and username"));
    }
}

}  // namespace
