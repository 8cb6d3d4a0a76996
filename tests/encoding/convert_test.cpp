#include "common/encoding/convert.h"

#include <gmock/gmock.h>

#include "common/exc/raise.h"
#include "tests/support/hook.h"

HOOK(kernel32, MultiByteToWideChar)
HOOK(kernel32, WideCharToMultiByte)

namespace {

using namespace encoding;

// Makes the n-th conversion call from now on fail once, with ERROR_NO_UNICODE_TRANSLATION: the system itself accepts
// every text that a test could build.
int calls_until_failure = 0;

template <class Hook>
void FailWhenItsTurnComes() {
    Hook::replacement = [](auto... args) {
        if (calls_until_failure == 0 || --calls_until_failure > 0) return Hook::System(args...);
        SetLastError(ERROR_NO_UNICODE_TRANSLATION);
        return 0;
    };
}

TEST(Convert, RoundTripsAndEndsAtANullAndReplacesWhatIsNoText) {
    const std::wstring wide = L"a\u00e4\u4e2d\xd83d\xde00z";
    const std::string narrow = "a\xc3\xa4\xe4\xb8\xad\xf0\x9f\x98\x80z";
    EXPECT_EQ(utf8_to_wide(narrow), wide);
    EXPECT_EQ(wide_to_utf8(wide), narrow);
    EXPECT_EQ(ansi_to_wide(wide_to_ansi(L"plain")), L"plain");
    EXPECT_EQ(wide_to_utf8(std::wstring(L"a\0b", 3)), "a");
    EXPECT_EQ(utf8_to_wide(std::string("a\0b", 3)), L"a");
    EXPECT_EQ(utf8_to_wide("a\xff z"), L"a\xfffd z");
    EXPECT_EQ(wide_to_utf8(L"a\xd800z\xdc00"), "a\xef\xbf\xbdz\xef\xbf\xbd");
}

TEST(Convert, FailuresNameTheConversionAndTheSourceOfNarrowText) {
    FailWhenItsTurnComes<MultiByteToWideChar_hook>();
    FailWhenItsTurnComes<WideCharToMultiByte_hook>();
    const std::pair<void (*)(), const char*> cases[] = {
        {[] { wide_to_ansi(L"x"); }, "Unicode string cannot be converted to multibyte string."},
        {[] { wide_to_utf8(L"x"); }, "Unicode string cannot be converted to UTF8 string."},
        {[] { ansi_to_wide("x%1"); }, "Multibyte string cannot be converted to unicode string. Source string: [x%1]."},
        {[] { utf8_to_wide("x%1"); },
         "Multibyte UTF8 string cannot be converted to unicode string. Source string: [x%1]."},
    };
    const std::string cause = exc::get_error_text(ERROR_NO_UNICODE_TRANSLATION) + "\n";
    for (const auto& [convert, sentence] : cases) {
        for (const int call : {1, 2}) {  // the size query, then the conversion itself
            calls_until_failure = call;
            EXPECT_THAT(convert,
                        testing::ThrowsMessage<exc::win_sys_exc_t>(cause + sentence + "\n--tr:Error code: 0x00000459"));
        }
    }
    // An error text that cannot be converted itself is no reason to ask for another one.
    calls_until_failure = 1;
    EXPECT_NE(exc::get_error_text(ERROR_ACCESS_DENIED), "");
    EXPECT_EQ(calls_until_failure, 0);
}

}  // namespace
