#include "common/logging/win_log_file.h"

#include <algorithm>
#include <thread>

#include <boost/make_shared.hpp>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/log_archives.h"
#include "common/logging/log_file_set.h"
#include "common/logging/component.h"
#include "common/logging/logger_core.h"
#include "common/logging/method_scope.h"
#include "common/logging/process_logger.h"
#include "common/platform/path.h"
#include "tests/logging/log_test_kit.h"

using namespace logging;
using namespace log_test;
using receiver::win_log_file_t;

namespace {

// A log with its logger; keeps what the file reports.
template <class File = win_log_file_t>
struct log_t {
    log_t(const fs::path& path, const size_limits_t& limits)
        : file(boost::make_shared<File>(path.wstring(), limits,
                                        [this](std::string_view sentence, const std::exception& cause) {
                                            reports.push_back(std::string(sentence) + "\n" + cause.what());
                                            logger.log({.level = 3, .text = sentence});
                                        })) {
        logger.attach(file);
    }

    // Records that make a line of 132 bytes each.
    void write(int first, int last) {
        for (int number = first; number <= last; ++number) {
            std::string text = std::to_string(number);
            text.resize(132 - 2 - 31, '.');
            logger.log({.text = text});
        }
    }

    logger_t logger;
    std::vector<std::string> reports;
    boost::shared_ptr<File> file;
};

// "first-last" for the numbers of each file, which follow each other without a gap.
std::map<std::string, std::string> contents(const folder_t& folder) {
    std::map<std::string, std::string> found;
    for (const auto& [name, texts] : logs_in(folder.path)) {
        int next = std::atoi(texts.at(0).c_str());
        found[name] = std::to_string(next) + "-" + std::to_string(next + static_cast<int>(texts.size()) - 1);
        for (const std::string& text : texts) EXPECT_EQ(std::atoi(text.c_str()), next++) << name;
    }
    return found;
}

}  // namespace

TEST(log_file, full_log_becomes_the_newest_archive_of_a_limited_number) {
    const struct {
        size_limits_t limits;
        std::map<std::string, std::string> expected;
    } cases[] = {
        {{1320, 3}, {{"A.log", "41-45"}, {"A.log.gz", "31-40"}, {"A.1.log.gz", "21-30"}, {"A.2.log.gz", "11-20"}}},
        {{1320, 1}, {{"A.log", "41-45"}, {"A.log.gz", "31-40"}}},
        {{1320, 0}, {{"A.log", "41-45"}}},
        {{0, 3}, {{"A.log", "1-45"}}},
    };
    for (const auto& c : cases) {
        const folder_t folder;
        log_t log(folder / L"A.log", c.limits);
        log.write(1, 10);
        EXPECT_EQ(contents(folder), (std::map<std::string, std::string>{{"A.log", "1-10"}}));
        log.write(11, 45);
        EXPECT_EQ(contents(folder), c.expected);
        EXPECT_EQ(log.file->size(), fs::file_size(folder / L"A.log"));
        EXPECT_TRUE(log.reports.empty());
    }
}

TEST(log_file, ageing_fills_a_gap_and_leaves_foreign_files) {
    const folder_t folder;
    for (const char* name : {"A.log", "A.log.gz", "A.1.log.gz", "A.3.log.gz", "A.7.log.gz", "A.01.log.gz"})
        WriteFileText(folder.path / name, name);
    age_archives((folder / L"A.log").wstring(), 4);
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(folder.path))
        found.push_back(entry.path().filename().string() + ": " + FileText(entry.path()));
    EXPECT_THAT(found, testing::UnorderedElementsAre("A.log: A.log", "A.1.log.gz: A.log.gz", "A.2.log.gz: A.1.log.gz",
                                                     "A.3.log.gz: A.3.log.gz", "A.01.log.gz: A.01.log.gz"));
}

TEST(log_file, failure_to_archive_costs_nothing_and_is_retried_later) {
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"A.log.gz", "Cannot age file. File path: [%1]. Extension: [.log.gz]. Ages limit: [3]."},
        {L"A.log.gz.tmp", "Failed to open GZ archive [%1]."},
    };
    for (const auto& [obstacle, cause] : cases) {
        const folder_t folder;
        fs::create_directory(folder / obstacle);
        log_t log(folder / L"A.log", {13200, 3});
        log.write(1, 105);  // fails at the 101st, is not tried again before the 110th
        const std::string sentence = "Cannot compress log file. Log: [" + (folder / L"A.log").string() + "].";
        ASSERT_EQ(log.reports.size(), 1U);
        EXPECT_THAT(log.reports[0], testing::StartsWith(sentence + "\n"));
        EXPECT_THAT(log.reports[0],
                    testing::HasSubstr("\n" + exc::format_message(cause, (folder / obstacle).string()) + "\n--tr:"));

        fs::remove(folder / obstacle);
        log.write(106, 108);
        EXPECT_FALSE(fs::exists(folder / L"A.log.gz"));
        log.write(109, 115);
        const auto texts = texts_in(folder / L"A.log.gz");
        EXPECT_EQ(texts.at(101), "WARN|" + sentence);
        EXPECT_EQ(texts.size() + texts_in(folder / L"A.log").size(), 116U);
    }
}

TEST(log_file, log_that_cannot_be_cut_keeps_its_lines_once) {
    struct uncuttable_t : win_log_file_t {
        using win_log_file_t::win_log_file_t;
        void clear() override { exc::raise("uncuttable"); }
    };
    const folder_t folder;
    log_t<uncuttable_t> log(folder / L"A.log", {1320, 3});
    log.write(1, 12);
    EXPECT_FALSE(fs::exists(folder / L"A.log.gz"));
    EXPECT_EQ(log.reports.size(), 1U);
    EXPECT_EQ(texts_in(folder / L"A.log").size(), 13U);
}

TEST(log_file, log_that_was_archived_but_not_cut_is_cut_when_it_is_opened) {
    const folder_t folder;
    const std::wstring path = (folder / L"A.log").wstring();
    const std::string line = "a line of an earlier process\r\n";
    for (const bool changed : {false, true}) {
        WriteFileText(path, line);
        archive_log(path, line.size(), 2);
        if (changed) WriteFileText(path, "A" + line.substr(1));
        const win_log_file_t log(path, {1000, 2}, {});
        EXPECT_EQ(log.size(), changed ? line.size() : 0);
        EXPECT_EQ(read_gzip(folder / L"A.log.gz"), line);
    }
}

TEST(log_file, line_that_an_earlier_process_was_ended_in_stays_alone) {
    const folder_t folder;
    WriteFileText(folder / L"A.log", "half a li");
    for (int run = 0; run < 2; ++run) log_t(folder / L"A.log", {1000, 2}).write(run, run);
    const std::string content = FileText(folder / L"A.log");
    EXPECT_THAT(content, testing::StartsWith("half a li\r\n["));
    EXPECT_EQ(std::ranges::count(content, '\n'), 3);
}

namespace {

using lines_t = std::vector<std::string>;

// What it logs comes out as these lines; the sink of the test below answers what ends in "ask".
lines_t log_much(unsigned number) {
    const std::string prefix = std::to_string(number) + ": ";
    const std::string begin = prefix + "ERR |" + std::string(std::size_t{2} * number, ' ');
    lines_t lines;
    for (int round = 0; round < 300; ++round) {
        const std::string text = prefix + std::to_string(round);
        ormacon_tool.log({.level = 4, .depth = number, .prefix = prefix, .text = text + "\n" + text + " ask"});
        method_scope_t scope(ormacon_tool, text);
        if (round % 2) scope.succeed();
        for (const std::string& line : {begin + text, begin + text + " ask", text + " ask answered", text,
                                        round % 2 ? text + " ok." : "ERR |" + text + " Failed."})
            lines.push_back(line);
    }
    return lines;
}

}  // namespace

TEST(log_file, sixteen_threads_lose_double_and_mix_nothing) {
    const folder_t folder;
    const auto file = boost::make_shared<win_log_file_t>((folder / L"A.log").wstring(), size_limits_t{40'000, 100},
                                                         receiver::log_file_t::report_t());
    int foreign_ids = 0;
    const auto answering = boost::make_shared<recording_sink_t>([&](const line_t& line) {
        foreign_ids += line.thread_id != GetCurrentThreadId();
        if (line.piece.ends_with(" ask")) ormacon_tool.info(std::string(line.piece) + " answered");
    });
    const boost::shared_ptr<receiver::sink_t> sinks[] = {file, answering};
    for (const auto& sink : sinks) process_logger().attach(sink);
    std::vector<lines_t> expected(16), found(16);
    std::vector<std::jthread> writers;
    for (unsigned number = 0; number < expected.size(); ++number)
        writers.emplace_back([&, number] { expected[number] = log_much(number); });
    writers.clear();
    for (const auto& sink : sinks) process_logger().detach(sink);

    std::string ask;  // the line before
    const auto read = [&](const std::string& name) {
        if (!fs::exists(folder.path / name)) return;
        for (const std::string& line : texts_in(folder.path / name)) {
            EXPECT_TRUE(!line.ends_with(" answered") || (ask + " answered").ends_with(line)) << line;
            found.at(std::stoul(line.substr(line.starts_with("ERR |") ? 5 : 0))).push_back(line);
            ask = line;
        }
    };
    for (int age = 99; age > 0; --age) read("A." + std::to_string(age) + ".log.gz");
    for (const char* name : {"A.log.gz", "A.log"}) read(name);
    EXPECT_TRUE(found == expected);
    EXPECT_EQ(foreign_ids, 0);
    EXPECT_TRUE(fs::exists(folder / L"A.10.log.gz"));
}

TEST(log_file_set, first_candidate_that_is_not_locked) {
    const folder_t folder;
    const auto set = log_file_set_t::numbered((folder / L"A.log").wstring());
    std::vector<boost::shared_ptr<receiver::log_file_t>> open;
    for (int number = 1; number <= 10; ++number) {
        open.push_back(set.open({}, {}));
        EXPECT_EQ(open.back()->path(), folder.path / (number == 1 ? "A.log" : "A_" + std::to_string(number) + ".log"));
    }
    EXPECT_THAT([&] { set.open({}, {}); }, testing::ThrowsMessage<exc::file_locked_exc_t>("All log files are locked."));
    open[2].reset();
    EXPECT_EQ(set.open({}, {})->path(), folder / L"A_3.log");
}

TEST(log_file, long_paths) {
    const folder_t folder;
    std::wstring path = folder.path.wstring();
    for (int level = 0; level < 6; ++level) path += L"\\" + std::wstring(60, L'a');
    platform::create_directories(path);
    {
        log_t log(path + L"\\A.log", {1320, 3});
        log.write(1, 25);
        EXPECT_TRUE(log.reports.empty());
    }
    for (const wchar_t* name : {L"\\A.log", L"\\A.log.gz", L"\\A.1.log.gz"})
        EXPECT_TRUE(DeleteFileW((L"\\\\?\\" + path + name).c_str())) << fs::path(name);
    for (; path != folder.path; path.resize(path.rfind(L'\\')))
        EXPECT_TRUE(RemoveDirectoryW((L"\\\\?\\" + path).c_str()));
}
