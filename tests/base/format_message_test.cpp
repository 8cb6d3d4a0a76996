#include "common/exc/format_message.h"

#include <gtest/gtest.h>

namespace {

using exc::format_message;

TEST(FormatMessage, ReplacesPlaceholdersAndCopiesEverythingElse) {
    const struct {
        const char* format;
        std::vector<std::string> arguments;
        const char* expected;
    } cases[] = {
        {"", {"a"}, ""},
        {"[%1] and [%2]", {"a"}, "[a] and [%2]"},
        {"100%", {}, "100%"},
        {"%0", {"a"}, "%0"},
        {"%1%1", {"x"}, "xx"},
        {"%2-%1", {"a", "b"}, "b-a"},
        {"%%1", {"a"}, "%a"},
        {"%%%", {"a"}, "%%%"},
        {"%03", {"a"}, "%3"},
        {"%01", {"a"}, "a"},
        {"%10", {"a"}, "%10"},
        {"% 1|% +1|%\t1", {"a"}, "a|a|a"},
        {"% x|%+|%-", {"a"}, "% x|%+|%-"},
        {"%-1", {"a"}, "%4294967295"},
        {"%4294967295|%4294967296|%99999999999999999999", {"a"}, "%4294967295|%4294967295|%4294967295"},
        {"%-99999999999", {"a"}, "%4294967295"},
        {"%1", {"%2"}, "%2"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(format_message(c.format, c.arguments), c.expected) << c.format;
    }
}

}  // namespace
