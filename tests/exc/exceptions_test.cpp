#include <cwchar>
#include <sstream>

#include <gmock/gmock.h>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "tests/support/hook.h"

HOOK(kernel32, FormatMessageW)

namespace {

using namespace exc;
using testing::ThrowsMessage;

runtime_exc_t Sample() {
    runtime_exc_t failure;
    failure.add_text("A");
    failure.add_text("B");
    failure.add_error_code(2);
    return failure;
}

TEST(FormatMessage, ReadsNumbersAsStrtoulDoesAndFailsOnNothing) {
    for (const auto& [format, text] : {std::pair("%1%2%3%0", "a%1b%3%0"),
                                       {"%", "%"},
                                       {"100% +2%-%x", "100b%-%x"},
                                       {"% \t-4294967295%10", "a%1%10"},
                                       {"%4294967297%-1", "%4294967295%4294967295"}})
        EXPECT_EQ(format_message(format, {"a%1", "b"}), text);
    EXPECT_EQ(format_message("%1%2", "a"), "a%2");
    EXPECT_EQ(format_message("%2%1%3", std::vector<std::string>{"a", "b"}), "ba%3");
}

TEST(Exceptions, EveryCodeHasAText) {
    std::pair<DWORD, DWORD> request;
    FormatMessageW_hook::replacement = [&](DWORD flags, auto, auto, DWORD language, wchar_t* buffer, auto...) {
        request = {flags, language};
        *reinterpret_cast<wchar_t**>(buffer) = static_cast<wchar_t*>(LocalAlloc(LPTR, 64));
        return static_cast<DWORD>(
            std::wcslen(std::wcscpy(*reinterpret_cast<wchar_t**>(buffer), L"Denied:\r\n\u00e4.\r\n")));
    };
    EXPECT_EQ(get_error_text(ERROR_ACCESS_DENIED), "Denied:\r\n\u00e4.");
    FormatMessageW_hook::replacement = nullptr;
    EXPECT_EQ(request, std::pair(DWORD{0x1300}, DWORD{0x409}));
    for (const std::uint32_t code : {5U, 0U, 12007U, 0x1fffffffU, 0xffffffffU}) {
        EXPECT_NE(get_error_text(code), "") << code;
    }
}

TEST(Exceptions, ContextComesLastAndKeepsTypeAndTraceMarks) {
    EXPECT_EQ(Sample().plain_message(), "A\nB\nError code: 0x00000002");
    EXPECT_THAT([] { rethrow_with_context(Sample(), "Context"); },
                ThrowsMessage<runtime_exc_t>("A\nB\n--tr:Error code: 0x00000002\nContext"));
    EXPECT_THAT([] { rethrow_with_context(std::runtime_error("foreign"), "Context"); },
                ThrowsMessage<runtime_exc_t>("foreign\nContext"));
    EXPECT_THAT([] { rethrow_with_context(win_sys_exc_t(7), "Context"); },
                testing::Throws<win_sys_exc_t>(testing::Field(&win_sys_exc_t::error_code, 7U)));
    EXPECT_THROW(rethrow_with_context(file_locked_exc_t(), "Context"), file_locked_exc_t);
    EXPECT_THROW(rethrow_with_context(term_exc_t(), "Context"), term_exc_t);
    EXPECT_THAT([] { rethrow_as_runtime_error(win_sys_exc_t(7), "Context"); }, ThrowsMessage<runtime_exc_t>("Context"));
}

void Read(exc_base_t& into, const std::string& form) {
    std::istringstream stream(form);
    into.read(stream);
}

TEST(SerialisedException, HasTheDocumentedBytes) {
    const std::string trace_text(0x1234, 'x');
    const std::string part_and_thread =
        std::string("\1\0\0\0\x34\x12\0\0", 8) + trace_text + std::string("\1\x9\0\0\0", 5);
    const std::string record("\2\0\0\0\3\0\0\0why", 11);
    const std::string form = part_and_thread + std::string("\2\0\0\0", 4) + record + record;
    runtime_exc_t failure;
    Read(failure, form);
    EXPECT_EQ(failure.what(), "--tr:" + trace_text);
    EXPECT_EQ(failure.thrower_thread_id(), 9U);
    EXPECT_THAT(failure.trace_records().counts,
                testing::ElementsAre(testing::Pair(trace_record_t{trace_event_t::context_added, "why"}, 2U)));
    std::ostringstream stream;
    failure.write(stream);
    EXPECT_EQ(stream.str(), form);
    auto more = Sample();
    Read(more, form);
    EXPECT_EQ(more.what(), std::string(Sample().what()) + "\n--tr:" + trace_text);

    const std::string unknown_record("\1\0\0\0\x7\0\0\0\3\0\0\0why", 15);
    EXPECT_THAT([&] { Read(failure, part_and_thread + unknown_record); },
                ThrowsMessage<runtime_exc_t>("Unexpected trace event: [7]. Info: why."));
}

}  // namespace
