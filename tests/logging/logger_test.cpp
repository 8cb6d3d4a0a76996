#include "common/logging/logger.h"

#include <chrono>
#include <thread>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/exc/exceptions.h"
#include "common/logging/log_exception.h"
#include "common/logging/output_sinks.h"
#include "common/platform/owned.h"
#include "tests/logging/faked_system.h"
#include "tests/support/recording_sink.h"

using namespace logging;
using log_test::faked_system;
using test_support::recording_sink_t;
using test_support::test_log;
using testing::ElementsAre;

TEST(logger, sinks_that_throw_or_log_cost_the_others_nothing) {
    logger_t logger;
    const auto throwing = boost::make_shared<recording_sink_t>([](const line_t&) { throw std::runtime_error("sink"); });
    const auto answering = boost::make_shared<recording_sink_t>([&](const line_t& line) {
        if (line.piece.starts_with("ask")) logger.log({.text = std::string(line.piece) + "+"});
    });
    const auto last = boost::make_shared<recording_sink_t>();
    for (const auto& sink : {throwing, answering, last}) logger.attach(sink);
    logger.log({.level = 4, .text = "one\r\n\ntwo\n"});
    logger.log({.level = 0, .text = "below the filter"});
    for (const char* text : {"ask", "end"}) logger.log({.text = text});
    EXPECT_THAT(answering->lines, ElementsAre("ERR |one", "ERR |", "ERR |two", "ERR |", "ask", "end"));
    EXPECT_THAT(last->lines, ElementsAre("ERR |one", "ERR |", "ERR |two", "ERR |", "ask+", "ask", "end"));
    logger.detach(last);
    logger.log({.text = "after"});
    EXPECT_EQ(last->lines.size(), 7U);
}

TEST(logger, control_characters_are_shown_and_pieces_counted) {
    logger_t logger;
    std::vector<std::size_t> pieces;
    const auto sink = boost::make_shared<recording_sink_t>([&](const line_t& line) { pieces.push_back(line.index); });
    logger.attach(sink);
    const std::pair<std::string_view, const char*> texts[] = {
        {"tab\t, \xC3\xA4 \xC2\xA0 \xE2\x82\x9B", "tab\t, \xC3\xA4 \xC2\xA0 \xE2\x82\x9B"},
        {{"\x1B[2K\r\0\x7F", 7}, "\\x1B[2K\\x0D\\x00\\x7F"},
        {"\xC2\x80\xC2\x9F\xC2", "\\x80\\x9F\xC2"},
    };
    for (const auto& [text, shown] : texts) {
        logger.log({.text = text});
        EXPECT_EQ(sink->lines.back(), shown);
    }
    sink->lines.clear();
    logger.log({.text = "1\r\n2\b\n3"});
    EXPECT_THAT(sink->lines, ElementsAre("1", "2\\x08", "3"));
    EXPECT_THAT(pieces, ElementsAre(0, 0, 0, 0, 1, 2));
}

TEST(logger, crash_inside_a_sink_is_logged_by_the_others) {
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
        EXPECT_EQ(WaitForSingleObject(logged.get(), 100), static_cast<DWORD>(WAIT_TIMEOUT));
        logger.log({.text = "crashed"});
    });
    for (const auto& sink : {crashing, other}) logger.attach(sink);
    logger.log({.text = "record"});
    EXPECT_EQ(WaitForSingleObject(logged.get(), 100), static_cast<DWORD>(WAIT_TIMEOUT));
    EXPECT_THAT(other->lines, ElementsAre("crashed", "record"));
    EXPECT_THAT(crashing->lines, ElementsAre("record"));
}

TEST(log_exception, texts_and_levels) {
    struct no_text_t : std::exception {
        const char* what() const noexcept override { return nullptr; }
    };
    const test_support::CRecordedLog log;
    exc::runtime_exc_t known;
    known.add_text("A");
    log_exception_with_thread(test_log, known);
    log_exception_with_thread(test_log, no_text_t());
    const std::string thread = "An exception was thrown from thread [";
    EXPECT_THAT(log.lines(), ElementsAre("WARN|A", "WARN|" + thread + std::to_string(GetCurrentThreadId()) + "].",
                                         "ERR |Exception message is not available.", "ERR |" + thread + "n/a]."));
}

TEST(cout_multiplexor, copies_complete_lines_and_ends) {
    const std::string cleared = "Clearing collection of cout multiplexors.";
    logger_t logger;
    logger.set_lowest_level(level_detail);
    std::ostringstream stream;
    const auto sink = boost::make_shared<recording_sink_t>();
    const auto printing = boost::make_shared<recording_sink_t>([&](const line_t& line) {
        if (line.piece == "print") stream << "echo" << std::endl;
    });
    for (const auto& attached : {sink, printing}) logger.attach(attached);
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

TEST(debugger_output, goes_to_a_trusted_monitor_that_takes_it) {
    const log_test::system_guard_t guard;
    faked_system.tick = 1000;
    receiver::COutputDebugStringLog log;
    const auto write = [&](std::string_view text) { log.write({time_stamp_t("[time] "), 1234}, {.text = text}); };
    write("before");
    const platform::unique_handle section(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, L"DBWIN_BUFFER"));
    const platform::unique_handle ready(CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_BUFFER_READY"));
    const platform::unique_handle data(CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_DATA_READY"));
    const platform::unique_handle mutex(CreateMutexW(nullptr, FALSE, L"DBWinMutex"));
    auto* const view = static_cast<char*>(MapViewOfFile(section.get(), FILE_MAP_WRITE, 0, 0, 4096));
    const auto taken = [&](const std::string& text) {
        *faked_system.tick += 1000;
        const ULONGLONG begin = GetTickCount();
        write(text);
        if (GetTickCount() - begin > 1000) return std::string("too late");
        return WaitForSingleObject(data.get(), 0) == WAIT_OBJECT_0 ? std::string(view + 4) : "";
    };
    EXPECT_EQ(taken("it is not ready"), "");
    SetEvent(ready.get());
    EXPECT_EQ(taken("a"), "[time] <34> Info     a\n");
    EXPECT_EQ(*reinterpret_cast<DWORD*>(view), GetCurrentProcessId());
    SetEvent(ready.get());
    std::string while_taken;  // a failure that is printed waits for the mutex, too
    std::thread([&] {
        WaitForSingleObject(mutex.get(), INFINITE);
        std::thread([&] { while_taken = taken("another thread has the mutex"); }).join();
        ReleaseMutex(mutex.get());
    }).join();
    EXPECT_EQ(while_taken, "");
    faked_system.is_foreign = [](const std::wstring& name) { return name.empty(); };
    EXPECT_EQ(taken("the monitor is another account's"), "");
    faked_system.is_foreign = {};
    EXPECT_EQ(taken(std::string(5000, 'b')), "[time] <34> Info     " + std::string(4091 - 21, 'b'));
    UnmapViewOfFile(view);
}
