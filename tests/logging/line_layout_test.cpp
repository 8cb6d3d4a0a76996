#include "common/logging/line_layout.h"

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
    layout(text, {time, thread, record, record.text, 0});
    return text;
}

void append_file_line(std::string& target, const line_t& line) {
    std::string buffer(longest_file_line(line), '#');
    const char* const end = put_file_line(buffer.data(), line);
    ASSERT_LE(end, buffer.data() + buffer.size());
    target.append(buffer, 0, static_cast<std::size_t>(end - buffer.data()));
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

TEST(time_stamp, local_time_that_the_clock_follows) {
    std::tm local{9, 5, 7, 3, 1, 126, 0, 0, -1};
    EXPECT_EQ(render_time_stamp(std::mktime(&local)), "[03.02.2026 07:05:09] ");
    EXPECT_EQ(render_time_stamp(-1), "TIME ---");
    time_stamp_clock_t clock;
    const std::string first(clock.now());
    for (const ULONGLONG start = GetTickCount64(); GetTickCount64() - start < 1100;) {
        const std::string text(clock.now());
        const std::time_t time = std::time(nullptr);
        ASSERT_TRUE(text == render_time_stamp(time) || text == render_time_stamp(time - 1)) << text;
    }
    EXPECT_NE(clock.now(), first);
}
