#include "common/logging/log_line.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <gtest/gtest.h>

#include "tests/support/hook.h"

HOOK(kernel32, GetSystemTimeAsFileTime)
HOOK(kernel32, GetTickCount64)

using namespace logging;

TEST(Sink, LayoutsOfLines) {
    const struct {
        std::uint32_t thread;
        record_t record;
        const char *file, *console, *short_thread;
        std::size_t index = 0;
    } cases[] = {
        {12, {.level = 4, .depth = 2, .text = "text"}, "<    12> ERR |    text", "Error        text", "<12> "},
        {4202, {.level = 3, .text = "a"}, "<  4202> WARN|a", "Warning  a", "< 2> "},
        {42, {.level = 3, .highlighted = true, .text = "a"}, "<    42> >>  |a", "Warning  a", "<42> "},
        {1, {.level = 1, .highlighted = true, .text = "a"}, "<     1> a", "Info     a", "< 1> "},
        {1, {.level = 2, .text = "a"}, "<     1> a", "Info     a", "< 1> "},
        {100, {.level = 0, .depth = 1, .text = ""}, "<   100>   ", "  ", "< 0> "},
        {4294967295, {.level = 4, .prefix = "[p] ", .text = "a"}, "<4294967295> [p] ERR |a", "Error    a", "<95> "},
        {12, {.level = 4, .prefix = "[p] ", .text = "a"}, "<     +> [p] ERR |a", "Error    a", "< +> ", 1},
    };
    for (const auto& c : cases) {
        std::string lines[3];
        const line_head_t head{time_stamp_t("[time] "), c.thread};
        const line_t line{head, c.record, c.record.text, c.index};
        append_file_line(lines[0], line);
        append_console_line(lines[1], line);
        append_short_line(lines[2], line);
        EXPECT_EQ(lines[0], std::string("[time] ") + c.file);
        EXPECT_EQ(lines[1], c.console);
        EXPECT_EQ(lines[2], std::string("[time] ") + c.short_thread + c.console);
    }
}

TEST(TimeStamp, FollowsWindowsAndNotTheEnvironment) {
    _putenv("TZ=XYZ-5");
    _tzset();
    constexpr std::uint64_t units_per_second = 10'000'000;
    std::uint64_t units = 0;
    GetTickCount64_hook::replacement = [&] { return units / 10'000; };
    GetSystemTimeAsFileTime_hook::replacement = [&](FILETIME* time) {
        *time = {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
    };
    time_stamp_clock_t clock;
    // The last second of a year, the next one, and half a year later, in the world's time.
    for (const std::uint64_t seconds : {13'411'526'399ULL, 13'411'526'400ULL, 13'427'164'800ULL}) {
        units = seconds * units_per_second + 9'999'999;
        FILETIME time;
        SYSTEMTIME utc, t;
        GetSystemTimeAsFileTime(&time);
        FileTimeToSystemTime(&time, &utc);
        SystemTimeToTzSpecificLocalTime(nullptr, &utc, &t);
        char text[32];
        std::snprintf(text, sizeof text, "[%02d.%02d.%04d %02d:%02d:%02d] ", t.wDay, t.wMonth, t.wYear, t.wHour,
                      t.wMinute, t.wSecond);
        for (int i = 0; i < 2; ++i) EXPECT_EQ(std::string_view(clock.now()), text);
    }
    _putenv("TZ=");
    GetTickCount64_hook::replacement = nullptr;
    GetSystemTimeAsFileTime_hook::replacement = nullptr;
    EXPECT_EQ(std::string_view(render_time_stamp(~0ULL / units_per_second)), "TIME ---");
}
