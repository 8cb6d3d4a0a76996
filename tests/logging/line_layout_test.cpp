#include "common/logging/sink.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <gtest/gtest.h>

#include "common/logging/time_stamp.h"
#include "common/win32.h"

using namespace logging;

namespace {

constexpr std::string_view stamp = "[13.11.2026 07:15:02] ";

using layout_t = void (*)(std::string&, const line_t&);

std::string laid_out(layout_t layout, std::uint32_t thread, const record_t& record, std::string_view time = stamp) {
    std::string text;
    layout(text, {{time, thread}, record, record.text});
    return text;
}

}  // namespace

TEST(line_layout, file_lines) {
    const struct {
        std::uint32_t thread;
        record_t record;
        const char* expected;
    } cases[] = {
        {12, {.level = 4, .depth = 2, .text = "text"}, "<    12> ERR |    text"},
        {4242, {.level = 3, .text = "a"}, "<  4242> WARN|a"},
        {4242, {.level = 3, .highlighted = true, .text = "a"}, "<  4242> >>  |a"},
        {1, {.level = 1, .highlighted = true, .text = "a"}, "<     1> a"},
        {1, {.level = 0, .depth = 1, .text = ""}, "<     1>   "},
        {4294967295, {.level = 4, .depth = 1, .prefix = "[p] ", .text = "a"}, "<4294967295> [p] ERR |  a"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(laid_out(append_file_line, c.thread, c.record), std::string(stamp) + c.expected);
    EXPECT_EQ(laid_out(append_file_line, 7, {.text = "a"}, "TIME ---"), "TIME ---<     7> a");
}

TEST(line_layout, console_and_short_lines) {
    const char* const labels[] = {"", "Info     ", "Info     ", "Warning  ", "Error    "};
    for (unsigned level = 0; level < std::size(labels); ++level) {
        const record_t record{.level = level, .highlighted = true, .depth = 1, .prefix = "p", .text = "text"};
        const std::string rest = std::string(labels[level]) + "  text";
        EXPECT_EQ(laid_out(append_console_line, 1, record), rest);
        EXPECT_EQ(laid_out(append_short_line, 1205, record), std::string(stamp) + "< 5> " + rest);
    }
}

TEST(time_stamp, follows_windows_and_not_the_environment) {
    const auto now = [] {
        SYSTEMTIME t;
        GetLocalTime(&t);
        char text[32];
        std::snprintf(text, sizeof text, "[%02d.%02d.%04d %02d:%02d:%02d] ", t.wDay, t.wMonth, t.wYear, t.wHour,
                      t.wMinute, t.wSecond);
        return std::string(text);
    };
    _putenv("TZ=XYZ-5");
    _tzset();
    line_head_clock_t clock;
    for (int second = 0; second < 2; ++second, Sleep(1000)) {
        std::string shown;
        for (int i = 0; i < 50 && shown != now(); ++i, Sleep(1))
            shown = clock.now(1).time_stamp();  // at most a tick late
        EXPECT_EQ(shown, now());
    }
    _putenv("TZ=");
    EXPECT_EQ(render_time_stamp(~0ULL / 10'000'000), "TIME ---");
}
