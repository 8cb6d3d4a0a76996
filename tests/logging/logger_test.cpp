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
#include "common/text/convert.h"
#include "common/win32.h"
#include "tests/support/recording_sink.h"

using namespace logging;
using test_support::recording_sink_t;
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

TEST(logger, crash_inside_a_sink_is_logged_by_the_others) {
    static logger_t& logger = *new logger_t;  // the thread below waits in it for good
    const auto other = boost::make_shared<recording_sink_t>(
        [](const line_t& line) { EXPECT_EQ(line.head.thread_id() == 4711, line.piece == "crashed"); });
    const auto crashing = boost::make_shared<recording_sink_t>([&](const line_t&) {
        logger.seize(4711, std::chrono::milliseconds(0));
        std::thread([] { logger.log({.text = "from another thread"}); }).detach();
        Sleep(100);
        logger.log({.text = "crashed"});
    });
    for (const auto& sink : {crashing, other}) logger.attach(sink);
    logger.log({.text = "record"});
    Sleep(100);
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
    log_exception_with_thread(ormacon_tool, known);
    log_exception_with_thread(ormacon_tool, no_text_t());
    const std::string thread = "An exception was thrown from thread [";
    EXPECT_THAT(log.lines(), ElementsAre("WARN|A", "WARN|" + thread + std::to_string(GetCurrentThreadId()) + "].",
                                         "ERR |Exception message is not available.", "ERR |" + thread + "n/a]."));
}

TEST(cout_multiplexor, copies_complete_lines_and_ends) {
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
    for (int i = 0; i < 2; ++i) logger.clear_multiplexors();  // the second time there is nothing to clear
    stream << "\nafter\n";
    EXPECT_THAT(sink->lines, ElementsAre("TRC |one1", "TRC |two", "print", "TRC |threcho",
                                         "Clearing collection of cout multiplexors.", "TRC |left"));
    EXPECT_EQ(stream.str(), "one1\ntwo\r\nthrecho\nleft\nafter\n");
}

TEST(debugger_output, written_while_somebody_listens) {
    static std::vector<std::string> texts;
    void* const handler = AddVectoredExceptionHandler(1, [](EXCEPTION_POINTERS* exception) -> LONG {
        const auto& record = *exception->ExceptionRecord;
        const void* const text = reinterpret_cast<const void*>(record.ExceptionInformation[1]);
        if (record.ExceptionCode == DBG_PRINTEXCEPTION_WIDE_C) {
            texts.push_back(text::wide_to_utf8(static_cast<const wchar_t*>(text)));
        } else if (record.ExceptionCode == DBG_PRINTEXCEPTION_C) {
            texts.emplace_back(static_cast<const char*>(text));
        } else {
            return EXCEPTION_CONTINUE_SEARCH;
        }
        return EXCEPTION_CONTINUE_EXECUTION;
    });
    receiver::COutputDebugStringLog log;
    const line_head_t head("[time] ", 1234);
    log.write(head, {.text = "a"});
    const platform::unique_handle buffer(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, L"DBWIN_BUFFER"));
    // The log looks again within a second.
    for (int i = 0; i < 300 && texts.empty(); ++i, Sleep(10)) log.write(head, {.text = {"c\0c\nd", 5}});
    RemoveVectoredExceptionHandler(handler);
    EXPECT_THAT(texts, ElementsAre("[time] <34> Info     c c\n", "[time] <34> Info     d\n"));
}
