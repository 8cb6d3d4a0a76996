#include "common/logging/sink.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <gtest/gtest.h>

#include "common/logging/time_stamp.h"
#include "tests/logging/faked_system.h"

using namespace logging;

namespace {

constexpr std::string_view stamp = "[13.11.2026 07:15:02] ";

using layout_t = void (*)(std::string&, const line_t&);

std::string laid_out(layout_t layout, std::uint32_t thread, const record_t& record, std::size_t index = 0,
                     std::string_view time = stamp) {
    std::string text;
    layout(text, {{time_stamp_t(time), thread}, record, record.text, index});
    return text;
}

}  // namespace

TEST(line_layout, file_lines) {
    const struct {
        std::uint32_t thread;
        record_t record;
        const char* expected;
        std::size_t index = 0;
    } cases[] = {
        {12, {.level = 4, .depth = 2, .text = "text"}, "<    12> ERR |    text"},
        {4242, {.level = 3, .text = "a"}, "<  4242> WARN|a"},
        {4242, {.level = 3, .highlighted = true, .text = "a"}, "<  4242> >>  |a"},
        {1, {.level = 1, .highlighted = true, .text = "a"}, "<     1> a"},
        {1, {.level = 0, .depth = 1, .text = ""}, "<     1>   "},
        {4294967295, {.level = 4, .depth = 1, .prefix = "[p] ", .text = "a"}, "<4294967295> [p] ERR |  a"},
        {4242, {.level = 4, .depth = 1, .prefix = "[p] ", .text = "a"}, "<     +> [p] ERR |  a", 1},
    };
    for (const auto& c : cases)
        EXPECT_EQ(laid_out(append_file_line, c.thread, c.record, c.index), std::string(stamp) + c.expected);
    EXPECT_EQ(laid_out(append_file_line, 7, {.text = "a"}, 0, "TIME ---"), "TIME ---<     7> a");
}

TEST(line_layout, console_and_short_lines) {
    const char* const labels[] = {"", "Info     ", "Info     ", "Warning  ", "Error    "};
    for (unsigned level = 0; level < std::size(labels); ++level) {
        const record_t record{.level = level, .highlighted = true, .depth = 1, .prefix = "p", .text = "text"};
        const std::string rest = std::string(labels[level]) + "  text";
        EXPECT_EQ(laid_out(append_console_line, 1, record), rest);
        EXPECT_EQ(laid_out(append_short_line, 1205, record), std::string(stamp) + "< 5> " + rest);
        EXPECT_EQ(laid_out(append_short_line, 1205, record, 1), std::string(stamp) + "< +> " + rest);
    }
}

TEST(time_stamp, follows_windows_and_not_the_environment) {
    const log_test::system_guard_t guard;
    _putenv("TZ=XYZ-5");
    _tzset();
    const auto shown_at = [](std::uint64_t seconds) { return std::string(render_time_stamp(seconds)); };
    time_stamp_clock_t clock;
    // The last second of a year, the next one, and half a year later, in the world's time.
    for (const std::uint64_t seconds : {13'411'526'399ULL, 13'411'526'400ULL, 13'427'164'800ULL}) {
        const std::uint64_t units = seconds * 10'000'000;
        const FILETIME time{static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
        SYSTEMTIME utc, t;
        FileTimeToSystemTime(&time, &utc);
        SystemTimeToTzSpecificLocalTime(nullptr, &utc, &t);
        char text[32];
        std::snprintf(text, sizeof text, "[%02d.%02d.%04d %02d:%02d:%02d] ", t.wDay, t.wMonth, t.wYear, t.wHour,
                      t.wMinute, t.wSecond);
        EXPECT_EQ(shown_at(seconds), text);
        log_test::faked_system.tick = seconds * 1000;
        log_test::faked_system.time = units + 9'999'999;
        for (int i = 0; i < 2; ++i) EXPECT_EQ(std::string_view(clock.now()), shown_at(seconds));
    }
    _putenv("TZ=");
    EXPECT_EQ(shown_at(~0ULL / 10'000'000), "TIME ---");
}
