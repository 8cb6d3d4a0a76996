#include "common/logging/logger_core.h"

#include <atomic>
#include <thread>

#include <boost/make_shared.hpp>

#include "common/exc/exceptions.h"
#include "common/logging/debug_output_log.h"
#include "common/logging/log_exception.h"
#include "tests/logging/log_test_kit.h"
#include "tests/support/recording_sink.h"

using namespace logging;
using namespace log_test;
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
    for (const auto& sink : {answering, last}) {
        EXPECT_THAT(sink->lines,
                    ElementsAre("4 one", "4 ", "4 two", "4 ", "1 ask", "1 ask+", "1 ask++", "1 ask+++", "1 end"));
    }
    logger.detach(last);
    logger.log({.text = "after"});
    EXPECT_EQ(last->lines.size(), 9U);
}

TEST(logger, bounded_wait_for_a_lock_that_is_never_given_back) {
    using namespace std::chrono_literals;
    logger_t logger;
    std::atomic<DWORD> owner = 0;
    std::atomic<bool> release = false;
    const auto stuck = boost::make_shared<recording_sink_t>([&](const line_t&) {
        owner = GetCurrentThreadId();
        while (!release) Sleep(1);
    });
    const auto other = boost::make_shared<recording_sink_t>();
    for (const auto& sink : {stuck, other}) logger.attach(sink);
    std::thread thread([&] { logger.log({.text = "stuck"}); });
    while (owner == 0) Sleep(1);
    const auto milliseconds = [](const std::function<void()>& action) {
        const auto begin = std::chrono::steady_clock::now();
        action();
        return (std::chrono::steady_clock::now() - begin) / 1ms;
    };
    EXPECT_GE(milliseconds([&] { EXPECT_FALSE(logger.try_log_for({.text = "x"}, 200ms, 0)); }), 190);
    logger.begin_bounded_waits(10000ms, owner);
    EXPECT_LT(milliseconds([&] { logger.log({.text = "past the stopped thread"}); }), 5000);
    EXPECT_THAT(other->lines, ElementsAre("1 past the stopped thread"));
    EXPECT_THAT(stuck->lines, ElementsAre("1 stuck"));
    release = true;
    thread.join();

    log_lock_t held_for_ever;
    std::thread([&] { held_for_ever.lock(); }).join();  // its owner has ended
    EXPECT_LT(milliseconds([&] { EXPECT_FALSE(held_for_ever.try_lock_for(20000ms, 0)); }), 5000);
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
    const auto sink = boost::make_shared<recording_sink_t>([&](const line_t& line) {
        if (line.piece == "print") stream << "echo" << std::endl;
    });
    logger.attach(sink);
    logger.multiplex(stream);
    stream << "one" << 1 << "\ntwo\r\n" << std::flush << "thr";
    EXPECT_THAT(sink->lines, ElementsAre("0 one1", "0 two"));
    logger.log({.text = "print"});
    stream << "left";
    for (int i = 0; i < 2; ++i) logger.clear_multiplexors();
    stream << "\nafter\n";
    EXPECT_THAT(sink->lines, ElementsAre("0 one1", "0 two", "1 print", "0 threcho",
                                         "1 Clearing collection of cout multiplexors.", "0 left"));
    EXPECT_EQ(stream.str(), "one1\ntwo\r\nthrecho\nleft\nafter\n");
}

TEST(debugger_output, given_while_somebody_listens) {
    static int texts = 0;
    void* const handler = AddVectoredExceptionHandler(1, [](EXCEPTION_POINTERS* exception) -> LONG {
        const DWORD code = exception->ExceptionRecord->ExceptionCode;
        if (code != DBG_PRINTEXCEPTION_C && code != DBG_PRINTEXCEPTION_WIDE_C) return EXCEPTION_CONTINUE_SEARCH;
        ++texts;
        return EXCEPTION_CONTINUE_EXECUTION;
    });
    receiver::COutputDebugStringLog().write("[time] ", 1234, {.text = "a\nb"});
    EXPECT_EQ(texts, 0);
    const platform::unique_handle buffer(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, L"DBWIN_BUFFER"));
    receiver::COutputDebugStringLog().write("[time] ", 1234, {.text = "a\nb"});
    RemoveVectoredExceptionHandler(handler);
    EXPECT_EQ(texts, 2);
}
