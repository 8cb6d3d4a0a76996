#include "common/logging/log_archives.h"

#include <cstring>
#include <map>
#include <random>

#include "tests/logging/log_fixture.h"

using namespace logging;
using namespace log_test;

namespace {

bool disk_is_full = false;

class LogArchives : public LogTest {
protected:
    std::string files() const {
        std::map<std::string, std::string> contents;
        for (const auto& entry : fs::directory_iterator(folder.path))
            contents[entry.path().filename().string()] = entry.is_directory() ? "folder" : read_gzip(entry.path());
        std::string text;
        for (const auto& [name, content] : contents) text.append(name).append("=").append(content).append(" ");
        return text;
    }
};

}  // namespace

// The name under which the linker looks for the function that zlib writes with.
extern "C" {
int __real_write(int file, const void* data, unsigned size);
int __wrap_write(int file, const void* data, unsigned size) {
    if (!disk_is_full) return __real_write(file, data, size);
    errno = ENOSPC;
    return -1;
}
}

TEST_F(LogArchives, MoveUpIntoAGapPastForeignNames) {
    for (const char* name : {"A.log", "A.log.gz", "A.1.log.gz", "A.3.log.gz", "A.7.log.gz", "A.01.log.gz"})
        WriteFileText(folder / name, name);
    archive_log(path, 5, 4);
    EXPECT_EQ(files(),
              "A.01.log.gz=A.01.log.gz A.1.log.gz=A.log.gz A.2.log.gz=A.1.log.gz A.3.log.gz=A.3.log.gz "
              "A.log=A.log A.log.gz=A.log ");
}

TEST_F(LogArchives, LeaveAloneWhatOthersHavePlanted) {
    for (const wchar_t* name : {L"A.log.gz.tmp", L"A.1.log.gz.tmp\\full", L"A.log.gz", L"A.3.log.gz"})
        fs::create_directories(folder / name);
    for (const wchar_t* name : {L"A.2.log.gz", L"A.9.log.gz"}) WriteFileText(folder / name, "foreign");
    make_foreign([](const std::wstring& name) { return name == L"A.2.log.gz" || name == L"A.9.log.gz"; });
    for (const char* content : {"1", "2", "3", "4", "5"}) {
        WriteFileText(path, content);
        EXPECT_EQ(archive_log(path, 1, 3).obstacle, refusal("A.log.gz", "it is a folder"));
        EXPECT_TRUE(is_archived(path, 1)) << "the newest archive is not found again";
    }
    EXPECT_EQ(files(),
              "A.1.log.gz=5 A.1.log.gz.tmp=folder A.2.log.gz=foreign A.3.log.gz=folder A.4.log.gz=4 "
              "A.5.log.gz=3 A.9.log.gz=foreign A.log=5 A.log.gz=folder A.log.gz.tmp=folder ");
}

TEST_F(LogArchives, FailuresOfZlib) {
    std::string content;  // hardly compressible
    std::generate_n(std::back_inserter(content), 1'000'000, std::minstd_rand());
    WriteFileText(path, content);
    const std::string temporary = (folder / L"A.log.gz.tmp").string();
    for (const auto& [size, sentence] : {std::pair(content.size(), "\nCannot add data to the GZ archive ["),
                                         std::pair(std::size_t{100}, "\nCannot close GZ archive [")}) {
        disk_is_full = true;
        EXPECT_EQ(test_support::FailureOf([&] { archive_log(path, size, 3); }),
                  std::strerror(ENOSPC) + (sentence + temporary) + "].\n--tr:Error code: -1");
        disk_is_full = false;
        EXPECT_FALSE(fs::exists(temporary));
    }
}

TEST_F(LogArchives, HaveALogOnlyIfTheyHaveItAll) {
    const std::string content(200'000, 'a');
    const std::function<void(std::string & log, std::string & archive)> changes[] = {
        [](auto&, auto&) {},
        [](auto& log, auto&) { log[log.size() - 3] ^= 1; },
        [](auto& log, auto&) { log.pop_back(); },
        [](auto&, auto& archive) { archive.pop_back(); },
        [](auto&, auto& archive) { archive[archive.size() - 6] ^= 1; },
        [](auto& log, auto& archive) { archive = log; },
    };
    for (const auto& change : changes) {
        const CTestFolder emptied;
        WriteFileText(path, content);
        archive_log(path, content.size(), 2);
        std::string log = content, archive = FileText(folder / L"A.log.gz");
        change(log, archive);
        WriteFileText(path, log);
        WriteFileText(folder / L"A.log.gz", archive);
        EXPECT_EQ(is_archived(path, log.size()), &change == changes);
    }
}
