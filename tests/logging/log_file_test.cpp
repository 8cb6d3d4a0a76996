#include "common/logging/log_file.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <span>
#include <thread>
#include <utility>

#include <boost/make_shared.hpp>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/component.h"
#include "common/logging/file_trust.h"
#include "common/logging/log_archives.h"
#include "common/logging/log_file_set.h"
#include "common/logging/logger.h"
#include "tests/logging/log_test_kit.h"
#include "tests/support/recording_sink.h"

using namespace logging;
using namespace log_test;
using receiver::win_log_file_t;
using test_support::recording_sink_t;

namespace {

// A log with its logger.
template <class File = win_log_file_t>
struct log_t {
    log_t(const fs::path& path, const size_limits_t& limits) : file(boost::make_shared<File>(path.wstring(), limits)) {
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
    boost::shared_ptr<File> file;
};

// "first-last" for the numbers of each file, which follow each other without a gap.
std::map<std::string, std::string> contents(const CTestFolder& folder) {
    std::map<std::string, std::string> found;
    for (const auto& entry : fs::directory_iterator(folder.path)) {
        const std::string name = entry.path().filename().string();
        const std::vector<std::string> texts = texts_in(entry.path());
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
        const CTestFolder folder;
        log_t log(folder / L"A.log", c.limits);
        log.write(1, 10);
        EXPECT_EQ(contents(folder), (std::map<std::string, std::string>{{"A.log", "1-10"}}));
        log.write(11, 45);
        EXPECT_EQ(contents(folder), c.expected);
        EXPECT_EQ(log.file->size(), fs::file_size(folder / L"A.log"));
    }
}

TEST(log_file, ageing_fills_a_gap_and_leaves_foreign_files) {
    const CTestFolder folder;
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
    const struct {
        std::uint32_t limit;
        const wchar_t* held_open;
        const char* cause = "Cannot age file. File path: [%1]. Extension: [.log.gz]. Ages limit: [%2].";
        const char* code = "20";  // sharing violation
    } cases[] = {
        {3, L"A.log.gz"},  // cannot be moved
        {1, L"A.log.gz"},  // cannot be deleted
        {2, L"A.1.log.gz"},
        {2, L"A.log.gz.tmp", "Failed to open GZ archive [%1].", "50"},  // exists
    };
    for (const auto& c : cases) {
        const CTestFolder folder;
        WriteFileText(folder / L"A.log.gz", "");
        WriteFileText(folder / c.held_open, "");
        platform::unique_file obstacle(
            CreateFileW((folder / c.held_open).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        log_t log(folder / L"A.log", {26'400, c.limit});
        log.write(1, 205);  // fails at the 201st, is tried again a tenth of the limit later
        auto texts = texts_in(folder / L"A.log");
        const std::string sentence = "WARN|Cannot compress log file. Log: [" + (folder / L"A.log").string() + "].";
        EXPECT_EQ(texts.at(200), sentence);
        EXPECT_EQ(texts.at(202),
                  "WARN|" + exc::format_message(c.cause, {(folder / c.held_open).string(), std::to_string(c.limit)}));
        EXPECT_EQ(texts.at(203), std::string("WARN|--tr:Error code: 0x000000") + c.code);
        EXPECT_EQ(texts.size(), 205U + 4);

        obstacle.reset();
        log.write(206, 206);
        EXPECT_GT(log.file->size(), 26'400U);
        log.write(207, 225);
        EXPECT_LT(log.file->size(), 2'640U);
        EXPECT_EQ(texts_in(folder / L"A.log.gz").size() + texts_in(folder / L"A.log").size(), 225U + 4);
    }
}

namespace {

struct failing_t : win_log_file_t {
    using win_log_file_t::win_log_file_t;
    void clear() override { exc::raise("uncuttable"); }
    void append(std::string_view text) override {
        if (std::exchange(full, false)) exc::raise("full");
        win_log_file_t::append(text);
    }
    bool full = false;
};

}  // namespace

TEST(log_file, keeps_its_lines_once_if_it_cannot_be_cut_and_counts_the_lost_ones) {
    const CTestFolder folder;
    log_t<failing_t> log(folder / L"A.log", {1320, 3});
    log.write(1, 12);
    EXPECT_FALSE(fs::exists(folder / L"A.log.gz"));
    EXPECT_EQ(texts_in(folder / L"A.log").size(), 14U);
    log.file->full = true;
    log.write(13, 13);
    log.logger.log({.prefix = {"x", SIZE_MAX}, .text = "too large for memory"});
    log.write(15, 16);
    const auto texts = texts_in(folder / L"A.log");
    EXPECT_EQ(texts.at(14), "WARN|Records that could not be written to the log: 2.");
    EXPECT_EQ(texts.size(), 17U);
}

TEST(log_file, is_cut_when_it_is_opened_only_if_the_archive_has_it_all) {
    std::string content;
    for (int number = 0; content.size() < 200'000; ++number) content += std::to_string(number * number) + "\r\n";
    const std::pair<bool, std::function<void(std::string & log, std::string & archive)>> cases[] = {
        {true, [](auto&, auto&) {}},
        {false, [](auto& log, auto&) { log[log.size() - 3] ^= 1; }},
        {false, [](auto& log, auto&) { log.erase(0, 2); }},
        {false, [](auto&, auto& archive) { archive.erase(0, archive.size() - 8); }},  // checksum and size
        {false, [](auto&, auto& archive) { archive.pop_back(); }},
        {false, [](auto&, auto& archive) { archive[archive.size() - 6] ^= 1; }},
        {false, [](auto& log, auto& archive) { archive = log; }},
    };
    for (const auto& [cut, change] : cases) {
        const CTestFolder folder;
        const fs::path path = folder / L"A.log";
        WriteFileText(path, content);
        archive_log(path.wstring(), content.size(), 2);
        std::string log = content, archive = FileText(folder / L"A.log.gz");
        change(log, archive);
        WriteFileText(path, log);
        WriteFileText(folder / L"A.log.gz", archive);
        EXPECT_EQ(win_log_file_t(path.wstring(), {}).size(), cut ? 0 : log.size());
        EXPECT_EQ(FileText(path), cut ? "" : log);
    }
}

TEST(log_file, line_that_an_earlier_process_was_ended_in_stays_alone) {
    const CTestFolder folder;
    WriteFileText(folder / L"A.log", "half a li");
    for (int run = 0; run < 2; ++run) log_t(folder / L"A.log", {1000, 2}).write(run, run);
    const std::string content = FileText(folder / L"A.log");
    EXPECT_THAT(content, testing::StartsWith("half a li\r\n["));
    EXPECT_EQ(std::ranges::count(content, '\n'), 3);
}

TEST(log_file, sixteen_threads_lose_double_and_mix_nothing) {
    const CTestFolder folder;
    const auto file = boost::make_shared<win_log_file_t>((folder / L"A.log").wstring(), size_limits_t{40'000, 100});
    int foreign_ids = 0;
    const auto answering = boost::make_shared<recording_sink_t>([&](const line_t& line) {
        foreign_ids += line.head.thread_id() != GetCurrentThreadId();
        if (line.piece.ends_with(" ask")) ormacon_tool.info(std::string(line.piece) + " answered");
    });
    const boost::shared_ptr<receiver::sink_t> sinks[] = {file, answering};
    for (const auto& sink : sinks) process_logger().attach(sink);
    std::vector<std::jthread> writers;
    for (int number = 0; number < 16; ++number)
        writers.emplace_back([number] {
            for (int round = 0; round < 500; ++round) {
                const std::string text = std::to_string(number) + ": " + std::to_string(round);
                ormacon_tool.info(text + "\n" + text + " ask");
            }
        });
    writers.clear();
    for (const auto& sink : sinks) process_logger().detach(sink);

    std::vector<std::string> lines;
    const auto read = [&](const std::string& name) {
        if (fs::exists(folder / name)) std::ranges::copy(texts_in(folder / name), std::back_inserter(lines));
    };
    for (int age = 99; age > 0; --age) read("A." + std::to_string(age) + ".log.gz");
    for (const char* name : {"A.log.gz", "A.log"}) read(name);
    ASSERT_EQ(lines.size(), 16U * 500 * 3);
    int rounds[16] = {};
    for (auto line = lines.begin(); line != lines.end(); line += 3) {
        const std::size_t number = std::stoul(*line);
        const std::string text = std::to_string(number) + ": " + std::to_string(rounds[number]++);
        EXPECT_THAT(std::span(line, 3), testing::ElementsAre(text, text + " ask", text + " ask answered"));
    }
    EXPECT_EQ(foreign_ids, 0);
    EXPECT_TRUE(fs::exists(folder / L"A.10.log.gz"));
}

TEST(log_file_set, first_candidate_that_is_not_locked) {
    const CTestFolder folder;
    const auto set = log_file_set_t::numbered((folder / L"A.log").wstring());
    std::vector<boost::shared_ptr<receiver::log_file_t>> open;
    for (int number = 1; number <= 10; ++number) {
        open.push_back(set.open({}));
        EXPECT_EQ(open.back()->path(), folder.path / (number == 1 ? "A.log" : "A_" + std::to_string(number) + ".log"));
    }
    EXPECT_THAT([&] { set.open({}); }, testing::ThrowsMessage<exc::file_locked_exc_t>("All log files are locked."));
    open[2].reset();
    EXPECT_EQ(set.open({})->path(), folder / L"A_3.log");
}

namespace {

// Whether a command of the shell succeeds on Wine's host; false elsewhere. Wine returns no handle to wait for.
bool run_on_host(const fs::path& folder, const std::wstring& command) {
    fs::remove(folder / "done");
    std::wstring line = L"sh -c \"(" + command + L") && echo 1 > done || echo 0 > done\"";
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(L"\\\\?\\unix\\bin\\sh", line.data(), nullptr, nullptr, FALSE, 0, nullptr, folder.c_str(),
                        &start, &process))
        return false;
    while (FileText(folder / "done").empty()) Sleep(10);
    return FileText(folder / "done") == "1\n";
}

}  // namespace

TEST(log_file_set, planted_files_are_left_alone) {
    const CTestFolder folder;
    WriteFileText(folder / L"other", "foreign");
    for (const wchar_t* name : {L"A.log", L"A_2.log"})
        ASSERT_TRUE(CreateHardLinkW((folder / name).c_str(), (folder / L"other").c_str(), nullptr));
    fs::create_directory(folder / L"A_3.log");
    const auto reason = [&](const wchar_t* name, const char* text) {
        return "WARN|File [" + (folder / name).string() + "] is not used: " + text + ".";
    };
    const auto set = log_file_set_t::numbered((folder / L"A.log").wstring());
    {
        logger_t logger;
        logger.attach(set.open({}));
        for (int i = 0; i < 2; ++i) logger.log({.text = "record"});
    }
    EXPECT_EQ(FileText(folder / L"other"), "foreign");
    EXPECT_THAT(texts_in(folder / L"A_4.log"),
                testing::ElementsAre(reason(L"A.log", "it has more than one name"),
                                     reason(L"A_2.log", "it has more than one name"),
                                     reason(L"A_3.log", "access to it is denied"), "record", "record"));

    // Wine shows files of other users of its host as such; its links to files cannot be told from the files.
    if (!run_on_host(folder.path,
                     L"chown nobody A_4.log && mkdir B && chown nobody B && ln -s B link && test -O A.log -a ! -O B"))
        GTEST_SKIP() << "no file can be given away here";
    EXPECT_EQ(set.open({})->path(), folder / L"A_5.log");
    EXPECT_THAT([&] { require_trusted_folder((folder / L"link\\Sub").wstring()); },
                testing::ThrowsMessage<exc::runtime_exc_t>(testing::HasSubstr("leads elsewhere")));
    EXPECT_NO_THROW(require_trusted_folder((folder / L"B").wstring()));
    EXPECT_TRUE(run_on_host(folder.path, L"rm link"));  // Wine would empty the folder and keep the link
}
