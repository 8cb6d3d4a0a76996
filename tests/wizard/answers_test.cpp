#include "wizard/answers.h"

#include <optional>

#include <gtest/gtest.h>

#include "common/exc/exceptions.h"
#include "wizard/console.h"

namespace {

using namespace wizard;

TEST(ParseInt, IsStrict) {
    const struct {
        const wchar_t* text;
        std::optional<int> value;
    } cases[] = {
        {L"7", 7},
        {L"+7", 7},
        {L"-7", -7},
        {L"-0", 0},
        {L"0007", 7},
        {L"2147483647", 2147483647},
        {L"-2147483648", -2147483647 - 1},
        {L"2147483648", {}},
        {L"-2147483649", {}},
        {L"4294967297", {}},
        {L"99999999999999999999", {}},
        {L"", {}},
        {L"+", {}},
        {L"-", {}},
        {L"+-7", {}},
        {L" 7", {}},
        {L"7 ", {}},
        {L"1 000", {}},
        {L"1,000", {}},
        {L"0x10", {}},
        {L"80x", {}},
        {L"7.0", {}},
        {L"\u0667", {}},
    };
    for (const auto& c : cases) {
        std::optional<int> value;
        try {
            value = ParseInt(c.text);
        } catch (const std::bad_cast&) {
        }
        EXPECT_EQ(value, c.value) << c.text;
    }
}

template <class Call>
std::string FailureOf(Call call) {
    try {
        call();
    } catch (const exc::runtime_exc_t& failure) {
        return failure.what();
    }
    return "nothing was raised";
}

TEST(ConvertAnswer, NamesTheAnswer) {
    EXPECT_EQ(ConvertAnswer(L"-1"), -1);
    EXPECT_EQ(FailureOf([] { ConvertAnswer(L"80x\u4e2d"); }), "Cannot convert value [80x\u4e2d] from string");
    EXPECT_EQ(FailureOf([] { ConvertAnswer(L""); }), "Cannot convert value [] from string");
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
        EXPECT_EQ(FailureOf([&] { SplitAccount(text); }), "Failed to parse domain and username");
    }
}

TEST(ToLowerText, LowersEachUnit) { EXPECT_EQ(ToLowerText(L"YeS 1"), L"yes 1"); }

}  // namespace
