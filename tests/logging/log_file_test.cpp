#include "common/logging/log_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <functional>
#include <span>
#include <thread>
#include <utility>

#include <boost/make_shared.hpp>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/log_archives.h"
#include "common/logging/log_file_set.h"
#include "common/logging/logger.h"
#include "common/platform/file_trust.h"
#include "common/platform/path.h"
#include "tests/logging/faked_system.h"
#include "tests/logging/log_test_kit.h"
#include "tests/support/recording_sink.h"

using namespace logging;
using namespace log_test;
using receiver::win_log_file_t;
using test_support::recording_sink_t;
using test_support::test_log;

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
    } cases[] = {
        {3, L"A.log.gz"},  // cannot be moved
        {1, L"A.log.gz"},  // cannot be deleted
        {2, L"A.1.log.gz"},
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
        constexpr const char* cause = "Cannot age file. File path: [%1]. Extension: [.log.gz]. Ages limit: [%2].";
        EXPECT_EQ(texts.at(202),
                  "WARN|" + exc::format_message(cause, {(folder / c.held_open).string(), std::to_string(c.limit)}));
        EXPECT_EQ(texts.at(203), "WARN|--tr:Error code: 0x00000020");  // sharing violation
        EXPECT_EQ(texts.size(), 205U + 4);

        obstacle.reset();
        log.write(206, 206);
        EXPECT_GT(log.file->size(), 26'400U);
        log.write(207, 225);
        EXPECT_LT(log.file->size(), 2'640U);
        EXPECT_EQ(texts_in(folder / L"A.log.gz").size() + texts_in(folder / L"A.log").size(), 225U + 4);
    }
}

TEST(log_file, archiving_leaves_alone_what_others_have_planted) {
    const CTestFolder folder;
    const system_guard_t guard;
    for (const wchar_t* name : {L"A.log.gz.tmp", L"A.1.log.gz.tmp\\full", L"A.log.gz", L"A.3.log.gz"})
        fs::create_directories(folder / name);
    WriteFileText(folder / L"A.2.log.gz", "foreign");
    faked_system.is_foreign = [](const std::wstring& name) { return name == L"A.2.log.gz"; };
    log_t log(folder / L"A.log", {1320, 3});
    log.write(1, 40);
    const std::string warning = "WARN|File [" + (folder / L"A.log.gz").string() + "] is not used: it is a folder.";
    EXPECT_EQ(texts_in(folder / L"A.log").at(0), warning);
    std::vector<std::string> texts;
    for (const wchar_t* name : {L"A.5.log.gz", L"A.4.log.gz", L"A.1.log.gz", L"A.log"})
        std::ranges::copy(texts_in(folder / name), std::back_inserter(texts));
    EXPECT_EQ(std::erase(texts, warning), 4);
    EXPECT_EQ(std::stoul(texts.front()) + texts.size(), 41U);
    EXPECT_EQ(std::stoul(texts.back()), 40U);
    EXPECT_EQ(FileText(folder / L"A.2.log.gz"), "foreign");
    EXPECT_FALSE(fs::exists(folder / L"A.6.log.gz"));
    // The newest archive is found again.
    const std::wstring path = (folder / L"B.log").wstring();
    fs::create_directory(folder / L"B.log.gz");
    WriteFileText(path, "archived\r\n");
    EXPECT_EQ(archive_log(path, 10, 3).path, folder / L"B.1.log.gz");
    EXPECT_EQ(win_log_file_t(path, {}).size(), 0U);
}

TEST(log_file, failures_of_zlib) {
    const CTestFolder folder;
    std::string content;  // hardly compressible
    for (std::uint32_t number = 1; content.size() < 1'000'000; number = number * 1'664'525 + 1'013'904'223)
        content += static_cast<char>(number >> 24);
    for (const auto& [size, sentence] : {std::pair(content.size(), "Cannot add data to the GZ archive [%1]."),
                                         std::pair(std::size_t{100}, "Cannot close GZ archive [%1].")}) {
        WriteFileText(folder / L"A.log", content.substr(0, size));
        const system_guard_t guard;
        faked_system.disk_is_full = true;
        const std::string expected = std::strerror(ENOSPC) +
                                     ("\n" + exc::format_message(sentence, (folder / L"A.log.gz.tmp").string())) +
                                     "\n--tr:Error code: -1";
        EXPECT_THAT([&] { archive_log((folder / L"A.log").wstring(), size, 3); },
                    testing::ThrowsMessage<exc::runtime_exc_t>(expected));
        EXPECT_FALSE(fs::exists(folder / L"A.log.gz.tmp"));
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
    EXPECT_EQ(std::ranges::count(content, '\n'), 5);
}

TEST(log_file, sixteen_threads_lose_double_and_mix_nothing) {
    const CTestFolder folder;
    const auto file = boost::make_shared<win_log_file_t>((folder / L"A.log").wstring(), size_limits_t{40'000, 100});
    int foreign_ids = 0;
    const auto answering = boost::make_shared<recording_sink_t>([&](const line_t& line) {
        foreign_ids += line.head.thread_id != GetCurrentThreadId();
        if (line.piece.ends_with(" ask")) test_log.info(std::string(line.piece) + " answered");
    });
    const boost::shared_ptr<receiver::sink_t> sinks[] = {file, answering};
    for (const auto& sink : sinks) process_logger().attach(sink);
    std::vector<std::jthread> writers;
    for (int number = 0; number < 16; ++number)
        writers.emplace_back([number] {
            for (int round = 0; round < 500; ++round) {
                const std::string text = std::to_string(number) + ": " + std::to_string(round);
                test_log.info(text + "\n" + text + " ask");
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
    const auto open = [&] {
        const std::wstring first = (folder / L"A.log").wstring();
        return boost::make_shared<log_file_set_t>(log_file_set_t::numbered(first), size_limits_t{});
    };
    std::vector<boost::shared_ptr<log_file_set_t>> sets;
    for (int number = 1; number <= 10; ++number) {
        sets.push_back(open());
        EXPECT_EQ(sets.back()->path(), folder.path / (number == 1 ? "A.log" : "A_" + std::to_string(number) + ".log"));
    }
    EXPECT_THAT(open, testing::ThrowsMessage<exc::file_locked_exc_t>("All log files are locked."));
    sets[2].reset();
    EXPECT_EQ(open()->path(), folder / L"A_3.log");
    EXPECT_THAT([] { log_file_set_t({}, {}); }, testing::ThrowsMessage<exc::runtime_exc_t>("Log paths list is empty."));
}

TEST(log_file_set, goes_on_in_the_next_file_when_a_reader_locks_the_end) {
    const CTestFolder folder;
    const system_guard_t guard;
    std::wstring locked;
    faked_system.write_error = [&](const std::wstring& name) {
        return locked.find(name) < 99 ? ERROR_LOCK_VIOLATION : 0;
    };
    const std::vector paths{(folder / L"A.log").wstring(), (folder / L"B.log").wstring()};
    const auto set = boost::make_shared<log_file_set_t>(paths, size_limits_t{});
    logger_t logger;
    logger.attach(set);
    const std::wstring locks[] = {L"", L"A.log", L"A.log", L"A.log B.log", L"A.log B.log", L""};
    for (std::size_t i = 0; i < std::size(locks); ++i) {
        locked = locks[i];
        logger.log({.text = std::to_string(i)});
    }
    EXPECT_EQ(set->path(), paths[1]);
    EXPECT_THAT(texts_in(paths[0]), testing::ElementsAre("0"));
    EXPECT_THAT(texts_in(paths[1]),
                testing::ElementsAre("WARN|" + exc::get_error_text(ERROR_LOCK_VIOLATION),
                                     "WARN|Log file is locked. Log path: [" + fs::path(paths[0]).string() + "].",
                                     "WARN|--tr:Error code: 0x00000021", "1", "2",
                                     "WARN|Records that could not be written to the log: 2.", "5"));
}

TEST(log_file_set, planted_files_are_left_alone) {
    const CTestFolder folder;
    const system_guard_t guard;
    const auto planted = [](const std::wstring& name) { return name == L"A_4.log"; };
    WriteFileText(folder / L"other", "foreign");
    WriteFileText(folder / L"A_4.log", "foreign");
    for (const wchar_t* name : {L"A.log", L"A_2.log"})
        ASSERT_TRUE(CreateHardLinkW((folder / name).c_str(), (folder / L"other").c_str(), nullptr));
    fs::create_directory(folder / L"A_3.log");
    faked_system.is_foreign = planted;
    const auto reason = [&](const wchar_t* name, const char* text) {
        return "WARN|File [" + (folder / name).string() + "] is not used: " + text + ".";
    };
    {
        logger_t logger;
        logger.attach(boost::make_shared<log_file_set_t>(log_file_set_t::numbered((folder / L"A.log").wstring()),
                                                         size_limits_t{}));
        for (int i = 0; i < 2; ++i) logger.log({.text = "record"});
    }
    for (const wchar_t* name : {L"other", L"A_4.log"}) EXPECT_EQ(FileText(folder / name), "foreign");
    EXPECT_THAT(texts_in(folder / L"A_5.log"),
                testing::ElementsAre(
                    reason(L"A.log", "it has more than one name"), reason(L"A_2.log", "it has more than one name"),
                    reason(L"A_3.log", "access to it is denied"), reason(L"A_4.log", "it belongs to another account"),
                    "record", "record", "Clearing collection of cout multiplexors."));
}

// Deduplicated files, for example, are reparse points, and no links.
TEST(file_trust, kinds_of_reparse_points) {
    constexpr const char* no_content = "its content cannot be opened";
    const struct {
        DWORD tag;
        bool replaced;  // between the look at the file and its use
        const char* reason;
    } cases[] = {
        {IO_REPARSE_TAG_DEDUP, false, nullptr},
        {IO_REPARSE_TAG_DEDUP, true, no_content},
        {IO_REPARSE_TAG_CLOUD_1, false, nullptr},
        {IO_REPARSE_TAG_SYMLINK, false, "it is a link"},
        {IO_REPARSE_TAG_MOUNT_POINT, false, "it is a link"},
    };
    for (const auto& c : cases) {
        const CTestFolder folder;
        const system_guard_t guard;
        for (const wchar_t* name : {L"A.log", L"B.log"}) WriteFileText(folder / name, "old\r\n");
        DWORD last_flags = 0;
        faked_system.reparse_tag = [&](const std::wstring& name) { return name == L"A.log" ? c.tag : 0; };
        faked_system.opening = [&](std::wstring& path, DWORD flags) {
            last_flags = flags;
            if (c.replaced && (flags & FILE_FLAG_OPEN_REPARSE_POINT) == 0 && path.ends_with(L"A.log")) {
                path = (folder / L"B.log").wstring();
            }
        };
        const auto open = [&] { platform::open_log_file((folder / L"A.log").wstring()); };
        if (c.reason == nullptr) {
            EXPECT_NO_THROW(open());
            EXPECT_EQ(last_flags & FILE_FLAG_OPEN_REPARSE_POINT, 0U);
        } else {
            EXPECT_THAT(open, testing::ThrowsMessage<exc::runtime_exc_t>("File [" + (folder / L"A.log").string() +
                                                                         "] is not used: " + c.reason + "."));
        }
    }
}

TEST(file_trust, way_that_leads_elsewhere) {
    const CTestFolder folder;
    const system_guard_t guard;
    for (const wchar_t* name : {L"Sub\\Logs", L"Other\\Logs"}) fs::create_directories(folder / name);
    std::wstring changed;  // what the end of a path becomes meanwhile
    faked_system.opening = [&](std::wstring& path, DWORD) {
        if (!changed.empty() && path.ends_with(changed)) path.replace(path.rfind(L"Sub"), 3, L"Other");
    };
    std::wstring link = L"none";
    faked_system.reparse_tag = [&](const std::wstring& name) { return name == link ? IO_REPARSE_TAG_MOUNT_POINT : 0; };
    faked_system.is_foreign = [&](const std::wstring& name) { return name == link; };
    const std::wstring logs = (folder / L"Sub\\Logs").wstring();
    const auto refused = [&](const std::wstring& path) {
        return testing::ThrowsMessage<exc::runtime_exc_t>(
            testing::HasSubstr(fs::path(platform::system_path(path)).string() + "] is not used: it leads elsewhere."));
    };
    const auto require = [&] { platform::require_trusted_folder(logs); };
    EXPECT_NO_THROW(require());
    changed = L"Sub\\Logs";
    EXPECT_THAT(require, refused(logs));
    changed = L"Sub\\Logs\\A.log";
    EXPECT_THAT([&] { platform::open_log_file(logs + L"\\A.log"); },
                testing::ThrowsMessage<exc::runtime_exc_t>(testing::HasSubstr("it is in another folder")));
    // A link that is there all the time, of an account that is trusted and of another one.
    changed = L"Sub\\Logs";
    link = L"Logs";
    EXPECT_THAT(require, refused(logs));
    faked_system.is_foreign = {};
    faked_system.opening = [&](std::wstring& path, DWORD flags) {
        if ((flags & FILE_FLAG_OPEN_REPARSE_POINT) == 0 && path.ends_with(changed))
            path = (folder / L"Other\\Logs").wstring();
    };
    EXPECT_NO_THROW(require());
}
