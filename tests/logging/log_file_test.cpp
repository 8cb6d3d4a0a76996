#include "common/logging/log_file.h"

#include <thread>

#include <boost/make_shared.hpp>

#include "common/exc/raise.h"
#include "common/logging/logger.h"
#include "tests/logging/log_fixture.h"

using namespace logging;
using namespace log_test;
using receiver::win_log_file_t;

namespace {

// Records that make a line of 132 bytes each.
texts_t records(int first, int last) {
    texts_t texts;
    for (int number = first; number <= last; ++number)
        texts.emplace_back(std::to_string(number)).resize(132 - 2 - 31, '.');
    return texts;
}

// A log with its logger.
struct log_t {
    log_t(const std::wstring& path, const size_limits_t& limits)
        : file(boost::make_shared<win_log_file_t>(path, limits)) {
        logger.attach(file);
    }

    void write(int first, int last) {
        for (const std::string& text : records(first, last)) logger.log({.text = text});
    }

    logger_t logger;
    const boost::shared_ptr<win_log_file_t> file;
};

using LogFile = LogTest;
using LogFileSet = LogTest;

}  // namespace

TEST_F(LogFile, BecomesTheNewestArchiveOfALimitedNumber) {
    const struct {
        size_limits_t limits;
        int kept, not_packed;  // the first of them
        std::ptrdiff_t files;
    } cases[] = {{{1320, 3}, 11, 41, 4}, {{1320, 1}, 31, 41, 2}, {{1320, 0}, 41, 41, 1}, {{0, 3}, 1, 1, 1}};
    for (const auto& c : cases) {
        const CTestFolder emptied;
        log_t log(path, c.limits);
        log.write(1, 10);
        EXPECT_EQ(texts_in(path), records(1, 10));
        log.write(11, 45);
        EXPECT_EQ(texts_in(path), records(c.not_packed, 45));
        EXPECT_EQ(all_texts_in(folder), records(c.kept, 45));
        EXPECT_EQ(std::distance(fs::directory_iterator(folder.path), {}), c.files);
        EXPECT_EQ(log.file->size(), fs::file_size(path));
    }
}

TEST_F(LogFile, FailureToArchiveCostsNothingAndIsRetriedLater) {
    const std::pair<std::uint32_t, const wchar_t*> cases[] = {
        {3, L"A.log.gz"}, {1, L"A.log.gz"}, {2, L"A.1.log.gz"}};  // cannot be moved, deleted, deleted
    for (const auto& [limit, name] : cases) {
        const CTestFolder emptied;
        for (const wchar_t* archive : {L"A.log.gz", name}) WriteFileText(folder / archive, "");
        platform::unique_file obstacle(
            CreateFileW((folder / name).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        log_t log(path, {26'400, limit});
        log.write(1, 205);  // fails at the 201st, is tried again a tenth of the limit later
        obstacle.reset();
        const int last = 200 + static_cast<int>((2640 + 131 - (fs::file_size(path) - 205 * 132)) / 132);
        log.write(206, last);
        texts_t expected = records(1, 225);
        const texts_t warnings{"WARN|Cannot compress log file. Log: [" + shown_path + "].",
                               "WARN|" + exc::get_error_text(ERROR_SHARING_VIOLATION),
                               "WARN|Cannot age file. File path: [" + (folder / name).string() +
                                   "]. Extension: [.log.gz]. Ages limit: [" + std::to_string(limit) + "].",
                               "WARN|--tr:Error code: 0x00000020"};
        expected.insert(expected.begin() + 200, warnings.begin(), warnings.end());
        EXPECT_EQ(texts_in(path), texts_t(expected.begin(), expected.end() - (225 - last)));
        log.write(last + 1, 225);
        EXPECT_EQ(all_texts_in(folder), expected);
        EXPECT_LT(log.file->size(), 2'640U);
    }
}

TEST_F(LogFile, KeepsItsLinesOnceIfItCannotBeTruncatedAndCountsTheLostOnes) {
    SetFileInformationByHandle_hook::Fail(ERROR_INVALID_PARAMETER);
    log_t log(path, {1320, 3});
    log.write(1, 12);
    EXPECT_FALSE(fs::exists(folder / L"A.log.gz"));
    fail_to_write(ERROR_DISK_FULL, [](const std::wstring& name) { return name == L"A.log"; });
    log.write(13, 13);
    WriteFile_hook::replacement = nullptr;
    log.logger.log({.prefix = {"x", SIZE_MAX}, .text = "too large for memory"});
    log.write(15, 16);
    texts_t texts = texts_in(path);
    const texts_t warnings(texts.begin() + 10, texts.begin() + 14);
    EXPECT_THAT(warnings, testing::ElementsAre("WARN|Cannot compress log file. Log: [" + shown_path + "].",
                                               "WARN|" + exc::get_error_text(ERROR_INVALID_PARAMETER),
                                               "WARN|Cannot cut log file. Log path: [" + shown_path + "].",
                                               "WARN|--tr:Error code: 0x00000057"));
    EXPECT_EQ(texts.at(16), "WARN|Records that could not be written to the log: 2.");
    EXPECT_EQ(texts.size(), 19U);
}

TEST_F(LogFile, EndsALineOfAnEarlierProcessAndArchivesBesideWhatIsPlanted) {
    fs::create_directory(folder / L"A.log.gz");
    WriteFileText(path, "half a li");
    log_t log(path, {20, 2});
    log.write(1, 2);
    const std::string archived = read_gzip(folder / L"A.1.log.gz");
    EXPECT_THAT(archived, testing::StartsWith("half a li\r\n["));
    EXPECT_EQ(archived.size(), 11U + 132);
    EXPECT_EQ(texts_in(path), (texts_t{"WARN|" + refusal("A.log.gz", "it is a folder"), records(2, 2)[0]}));
}

TEST_F(LogFile, SixteenThreadsLoseDoubleAndMixNothing) {
    logger_t logger;
    logger.attach(boost::make_shared<win_log_file_t>(path, size_limits_t{40'000, 100}));
    std::vector<std::jthread> writers;
    for (int number = 0; number < 16; ++number)
        writers.emplace_back([&, number] {
            for (int round = 0; round < 1000; ++round)
                logger.log({.text = "thread " + std::to_string(number) + "\n" + std::to_string(round)});
        });
    writers.clear();
    const texts_t lines = all_texts_in(folder);
    ASSERT_EQ(lines.size(), 16U * 1000 * 2);
    std::map<std::string, int> rounds;
    for (auto line = lines.begin(); line != lines.end(); line += 2)
        EXPECT_EQ(line[1], std::to_string(rounds[line[0]]++)) << line[0];
    EXPECT_TRUE(fs::exists(folder / L"A.10.log.gz"));
}

TEST_F(LogFileSet, FirstCandidateThatIsNotLocked) {
    const auto open = [&] { return std::make_unique<log_file_set_t>(log_file_set_t::numbered(path), size_limits_t{}); };
    std::vector<std::unique_ptr<log_file_set_t>> sets;
    for (int number = 1; number <= 10; ++number) {
        sets.push_back(open());
        EXPECT_EQ(sets.back()->path(), folder.path / (number == 1 ? "A.log" : "A_" + std::to_string(number) + ".log"));
    }
    EXPECT_THAT(open, testing::ThrowsMessage<exc::file_locked_exc_t>("All log files are locked."));
    sets[2].reset();
    EXPECT_EQ(open()->path(), folder / L"A_3.log");
    EXPECT_EQ(test_support::FailureOf([] { log_file_set_t({}, {}); }), "Log paths list is empty.");
}

TEST_F(LogFileSet, GoesOnInTheNextFileWhenAReaderLocksTheEnd) {
    std::wstring locked;
    fail_to_write(ERROR_LOCK_VIOLATION, [&](const std::wstring& name) { return locked.find(name) < 99; });
    const std::vector paths{path, (folder / L"B.log").wstring()};
    const auto set = boost::make_shared<log_file_set_t>(paths, size_limits_t{});
    logger_t logger;
    logger.attach(set);
    int number = 0;
    for (const wchar_t* locks : {L"", L"A.log", L"A.log", L"A.log B.log", L"A.log B.log", L""}) {
        locked = locks;
        logger.log({.text = std::to_string(number++)});
    }
    EXPECT_EQ(set->path(), paths[1]);
    EXPECT_EQ(texts_in(paths[0]), texts_t{"0"});
    EXPECT_EQ(texts_in(paths[1]),
              (texts_t{"WARN|" + exc::get_error_text(ERROR_LOCK_VIOLATION),
                       "WARN|Log file is locked. Log path: [" + shown_path + "].", "WARN|--tr:Error code: 0x00000021",
                       "1", "2", "WARN|Records that could not be written to the log: 2.", "5"}));
}

TEST_F(LogFileSet, LeavesAloneWhatOthersHavePlanted) {
    for (const wchar_t* name : {L"other", L"A_3.log"}) WriteFileText(folder / name, "foreign");
    ASSERT_TRUE(CreateHardLinkW(path.c_str(), (folder / L"other").c_str(), nullptr));
    fs::create_directory(folder / L"A_2.log");
    make_foreign([](const std::wstring& name) { return name == L"A_3.log"; });
    {
        logger_t logger;
        logger.attach(boost::make_shared<log_file_set_t>(log_file_set_t::numbered(path), size_limits_t{}));
        for (int i = 0; i < 2; ++i) logger.log({.text = "record"});
    }
    EXPECT_EQ(texts_in(folder / L"A_4.log"),
              (texts_t{"WARN|" + refusal("A.log", "it has more than one name"),
                       "WARN|" + refusal("A_2.log", "access to it is denied"),
                       "WARN|" + refusal("A_3.log", "it belongs to another account"), "record", "record",
                       "Clearing collection of cout multiplexors."}));
    for (const wchar_t* name : {L"other", L"A_3.log"}) EXPECT_EQ(FileText(folder / name), "foreign");
}
