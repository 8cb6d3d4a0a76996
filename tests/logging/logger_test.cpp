#include "common/logging/logger.h"

#include <bit>
#include <chrono>
#include <thread>

#include <boost/make_shared.hpp>

#include "common/logging/output_sinks.h"
#include "common/platform/owned.h"
#include "tests/logging/log_fixture.h"
#include "tests/support/recording_sink.h"

using namespace logging;
using test_support::recording_sink_t;
using testing::ElementsAre;

TEST(Logger, SinksThatThrowOrLogCostTheOthersNothing) {
    logger_t logger;
    const auto throwing = boost::make_shared<recording_sink_t>([](const line_t&) { throw std::runtime_error("sink"); });
    const auto answering = boost::make_shared<recording_sink_t>([&](const line_t& line) {
        if (line.piece.starts_with("ask")) logger.log({.text = std::string(line.piece) + "+"});
    });
    const auto last = boost::make_shared<recording_sink_t>();
    for (const auto& sink : {throwing, answering, last}) logger.attach(sink);
    logger.log({.level = 4, .text = "one"});
    logger.log({.level = 0, .text = "below the filter"});
    for (const char* text : {"ask", "end"}) logger.log({.text = text});
    EXPECT_THAT(answering->lines, ElementsAre("ERR |one", "ask", "end"));
    EXPECT_THAT(last->lines, ElementsAre("ERR |one", "ask+", "ask", "end"));
    logger.detach(last);
    logger.log({.text = "after"});
    EXPECT_EQ(last->lines.size(), 4U);
}

TEST(Logger, ShowsControlCharactersAndCountsPieces) {
    std::string shown;
    logger_t logger;
    logger.attach(boost::make_shared<recording_sink_t>(
        [&](const line_t& line) { shown.append(std::to_string(line.index)).append(line.piece).append("|"); }));
    for (const std::string_view text :
         {"tab\t, \xC3\xA4 \xC2\xA0 \xE2\x82\x9B", "\x1B[2K\r\x7F", "\xC2\x80\xC2\x9F\xC2", "1\r\n\n2\b\n3\n"})
        logger.log({.text = text});
    logger.log({.text = {"\0", 1}});
    EXPECT_EQ(shown,
              "0tab\t, \xC3\xA4 \xC2\xA0 \xE2\x82\x9B|0\\x1B[2K\\x0D\\x7F|0\\x80\\x9F\xC2|"
              "01|1|22\\x08|33|4|0\\x00|");
}

TEST(Logger, CrashInsideASinkIsLoggedByTheOthers) {
    static logger_t& logger = *new logger_t;  // the thread below waits in it for good
    static const platform::unique_handle logged(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const auto other = boost::make_shared<recording_sink_t>(
        [](const line_t& line) { EXPECT_EQ(line.head.thread_id == 4711, line.piece == "crashed"); });
    const auto crashing = boost::make_shared<recording_sink_t>([&](const line_t&) {
        logger.seize(4711, std::chrono::milliseconds(0));
        std::thread([] {
            logger.log({.text = "from another thread"});
            SetEvent(logged.get());
        }).detach();
        logger.log({.text = "crashed"});
    });
    for (const auto& sink : {crashing, other}) logger.attach(sink);
    logger.log({.text = "record"});
    EXPECT_EQ(WaitForSingleObject(logged.get(), 100), static_cast<DWORD>(WAIT_TIMEOUT));
    EXPECT_THAT(other->lines, ElementsAre("crashed", "record"));
    EXPECT_THAT(crashing->lines, ElementsAre("record"));
}

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

using TimeStamp = log_test::LogTest;

TEST_F(TimeStamp, IsOfTheTimeZoneOfWindowsAndOfTheSecond) {
    SystemTimeToTzSpecificLocalTime_hook::replacement = [](auto, const SYSTEMTIME* utc, SYSTEMTIME* local) {
        *local = *utc;
        local->wMinute = 45;
        return TRUE;
    };
    time_stamp_clock_t clock;
    for (const auto& [second, text] : {std::pair(13'411'699'199ULL, "[31.12.2025 23:45:59] "),
                                       std::pair(13'411'699'200ULL, "[01.01.2026 00:45:00] ")}) {
        const auto time = std::bit_cast<FILETIME>(second * 10'000'000 + 9'999'999);
        GetTickCount64_hook::replacement = [tick = second] { return tick; };
        GetSystemTimeAsFileTime_hook::replacement = [=](FILETIME* now) { *now = time; };
        for (int i = 0; i < 2; ++i) EXPECT_EQ(std::string_view(clock.now()), text);
    }
    EXPECT_EQ(std::string_view(render_time_stamp(~0ULL / 10'000'000)), "TIME ---");
}

TEST(CoutMultiplexor, CopiesCompleteLinesAndEnds) {
    const std::string cleared = "Clearing collection of cout multiplexors.";
    logger_t logger;
    logger.set_lowest_level(level_detail);
    std::ostringstream stream;
    const auto sink = boost::make_shared<recording_sink_t>();
    logger.attach(sink);
    logger.attach(boost::make_shared<recording_sink_t>([&](const line_t& line) {
        if (line.piece == "print") stream << "echo" << std::endl;
    }));
    logger.multiplex(stream);
    stream << "one" << 1 << "\ntwo\r\n" << std::flush << "thr";
    EXPECT_THAT(sink->lines, ElementsAre("TRC |one1", "TRC |two"));
    logger.log({.text = "print"});
    stream << "left";
    for (int i = 0; i < 2; ++i) logger.clear_multiplexors();
    stream << "\nafter\n";
    EXPECT_THAT(sink->lines,
                ElementsAre("TRC |one1", "TRC |two", "print", "TRC |threcho", cleared, "TRC |left", cleared));
    EXPECT_EQ(stream.str(), "one1\ntwo\r\nthrecho\nleft\nafter\n");
}

using DebuggerOutput = log_test::LogTest;

TEST_F(DebuggerOutput, GoesToATrustedMonitorThatTakesIt) {
    ULONGLONG tick = 0;
    GetTickCount64_hook::replacement = [&] { return tick += 1000; };
    bool foreign = false;
    log_test::make_foreign([&](const std::wstring&) { return foreign; });
    receiver::COutputDebugStringLog log;
    const auto write = [&](std::string_view text) { log.write({time_stamp_t("[time] "), 1234}, {.text = text}); };
    write("nobody listens");
    const platform::unique_handle section(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, L"DBWIN_BUFFER"));
    const platform::unique_handle ready(CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_BUFFER_READY"));
    const platform::unique_handle data(CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_DATA_READY"));
    const platform::unique_handle mutex(CreateMutexW(nullptr, FALSE, L"DBWinMutex"));
    auto* const view = static_cast<char*>(MapViewOfFile(section.get(), FILE_MAP_WRITE, 0, 0, 4096));
    const auto taken = [&](const std::string& text) {
        const DWORD begin = GetTickCount();
        write(text);
        if (GetTickCount() - begin > 1000) return std::string("too late");
        return WaitForSingleObject(data.get(), 0) == WAIT_OBJECT_0 ? std::string(view + 4) : "";
    };
    EXPECT_EQ(taken("it is not ready"), "");
    SetEvent(ready.get());
    EXPECT_EQ(taken("a"), "[time] <34> Info     a\n");
    EXPECT_EQ(*reinterpret_cast<DWORD*>(view), GetCurrentProcessId());
    SetEvent(ready.get());
    WaitForSingleObject(mutex.get(), INFINITE);
    std::string while_taken;  // a failure that is printed waits for the mutex, too
    std::thread([&] { while_taken = taken("another thread has the mutex"); }).join();
    ReleaseMutex(mutex.get());
    EXPECT_EQ(while_taken, "");
    foreign = true;
    EXPECT_EQ(taken("the monitor is another account's"), "");
    foreign = false;
    EXPECT_EQ(taken(std::string(5000, 'b')), "[time] <34> Info     " + std::string(4091 - 21, 'b'));
    SetEvent(ready.get());
    MapViewOfFile_hook::Fail(ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(taken("no address space is left"), "");
    UnmapViewOfFile(view);
}
