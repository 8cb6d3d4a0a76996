#include "common/text/convert.h"

#include <functional>

#include <gtest/gtest.h>

#include "common/exc/error_text.h"
#include "common/exc/exceptions.h"
#include "common/text/wipe.h"
#include "tests/base/failing_conversion.h"

namespace {

using namespace text;

constexpr char outside_bmp[] = "a\xc3\xa4\xe4\xb8\xad\xf0\x9f\x98\x80z";

TEST(Convert, Utf8RoundTrips) {
    const std::wstring wide = L"a\u00e4\u4e2d\xd83d\xde00z";
    EXPECT_EQ(utf8_to_wide(outside_bmp), wide);
    EXPECT_EQ(wide_to_utf8(wide), outside_bmp);
    for (const std::size_t size : {1U, 63U, 64U, 65535U, 65536U, 1000000U}) {
        const std::wstring source(size, L'\u4e2d');
        EXPECT_EQ(utf8_to_wide(wide_to_utf8(source)), source) << size;
    }
}

TEST(Convert, AnsiRoundTripsPlainText) {
    EXPECT_EQ(wide_to_ansi(std::wstring(L"plain")), "plain");
    EXPECT_EQ(wide_to_ansi(L"pointer"), "pointer");
    EXPECT_EQ(wide_to_ansi(L""), "");
    EXPECT_EQ(ansi_to_wide("plain"), L"plain");
}

TEST(Convert, EmptyStaysEmptyAndANullCuts) {
    EXPECT_EQ(wide_to_utf8(L""), "");
    EXPECT_EQ(utf8_to_wide(""), L"");
    EXPECT_EQ(wide_to_utf8(std::wstring(L"a\0b", 3)), "a");
    EXPECT_EQ(wide_to_ansi(std::wstring(L"a\0b", 3)), "a");
    EXPECT_EQ(utf8_to_wide(std::string("a\0b", 3)), L"a");
    EXPECT_EQ(utf8_to_wide(std::string("\0b", 2)), L"");
}

std::string FailureOf(int failing_call, const std::function<void()>& conversion) {
    test_support::FailConversionCall(failing_call);
    try {
        conversion();
    } catch (const exc::win_sys_exc_t& failure) {
        EXPECT_EQ(failure.error_code, static_cast<unsigned>(ERROR_NO_UNICODE_TRANSLATION));
        return failure.what();
    }
    return "nothing was raised";
}

TEST(Convert, FailuresNameTheConversionAndTheSourceOfNarrowText) {
    const std::string cause = exc::get_error_text(ERROR_NO_UNICODE_TRANSLATION) + "\n";
    const std::string code = "\n--tr:Error code: 0x00000459";
    for (const int call : {1, 2}) {  // the size query, the conversion itself
        EXPECT_EQ(FailureOf(call, [] { wide_to_ansi(std::wstring(L"x")); }),
                  cause + "Unicode string cannot be converted to multibyte string." + code);
        EXPECT_EQ(FailureOf(call, [] { wide_to_utf8(L"x"); }),
                  cause + "Unicode string cannot be converted to UTF8 string." + code);
        EXPECT_EQ(FailureOf(call, [] { ansi_to_wide("x%1"); }),
                  cause + "Multibyte string cannot be converted to unicode string. Source string: [x%1]." + code);
        EXPECT_EQ(FailureOf(call, [] { utf8_to_wide("x%1"); }),
                  cause + "Multibyte UTF8 string cannot be converted to unicode string. Source string: [x%1]." + code);
    }
}

TEST(Convert, AnErrorTextThatCannotBeConvertedDoesNotRecurse) {
    test_support::FailConversionCall(1);
    EXPECT_NE(exc::get_error_text(ERROR_ACCESS_DENIED), "");
}

TEST(Wipe, OverwritesShortAndLongTexts) {
    for (const std::size_t size : {3U, 100U}) {
        std::wstring secret(size, L's');
        const wchar_t* memory = secret.data();
        { const wipe_at_exit_t wipe(secret); }
        EXPECT_TRUE(secret.empty());
        EXPECT_EQ(std::wstring(memory, size), std::wstring(size, L'\0'));
    }
}

}  // namespace
