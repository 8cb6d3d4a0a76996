// What several logging tests share: a folder of their own, reading logs and archives, a sink that records.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <boost/filesystem.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/logging/sink.h"
#include "common/platform/module.h"
#include "common/platform/owned.h"
#include "common/platform/path.h"
#include "tests/support/demo_host.h"

#include <zlib.h>

namespace log_test {

namespace fs = std::filesystem;
using test_support::FileText;
using test_support::WriteFileText;

// A folder of this process and test, empty at the start and deleted at the end of the test. What interrupted runs left
// is deleted where no hanging program uses it any more. Paths in it may be longer than 260 characters.
struct folder_t {
    folder_t() {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        const std::wstring name = fs::path(std::string(test->test_suite_name()) + "." + test->name() + ".").wstring();
        const fs::path parent = fs::path(platform::program_path()).parent_path() / "test_folders";
        fs::create_directories(parent);
        for (const auto& entry : fs::directory_iterator(parent))
            if (entry.path().filename().wstring().starts_with(name)) remove(entry.path());
        path = parent / (name + std::to_wstring(GetCurrentProcessId()));
        fs::create_directory(path);
    }
    ~folder_t() { remove(path); }
    folder_t(const folder_t&) = delete;
    folder_t& operator=(const folder_t&) = delete;
    fs::path operator/(const wchar_t* name) const { return path / name; }

    static void remove(const fs::path& folder) {
        boost::system::error_code ignored;
        boost::filesystem::remove_all(platform::system_path(folder.wstring()), ignored);
    }

    fs::path path;
};

// The content of a gzip file; a file that is cut off or damaged fails the test.
inline std::string read_gzip(const fs::path& path) {
    std::string content;
    std::vector<char> data(1 << 16);
    const gzFile file = gzopen_w(path.c_str(), "rb");
    EXPECT_NE(file, nullptr) << path;
    int count = 0;
    while ((count = gzread(file, data.data(), static_cast<unsigned>(data.size()))) > 0) {
        content.append(data.data(), static_cast<std::size_t>(count));
    }
    EXPECT_EQ(gzclose(file), Z_OK) << path;
    return content;
}

// The part of each line of a log or an archive after time stamp and thread; each line must end in CRLF.
inline std::vector<std::string> texts_in(const fs::path& path) {
    std::vector<std::string> texts;
    std::istringstream stream(path.extension() == ".gz" ? read_gzip(path) : FileText(path));
    for (std::string line; std::getline(stream, line);) {
        const std::size_t begin = line.find("> ");
        const bool complete = !stream.eof() && line.ends_with('\r') && begin != std::string::npos;
        EXPECT_TRUE(complete) << path << ": " << line;
        if (complete) texts.push_back(line.substr(begin + 2, line.size() - begin - 3));
    }
    return texts;
}

// The logs and archives of the folder with what is in them.
inline std::map<std::string, std::vector<std::string>> logs_in(const fs::path& folder) {
    std::map<std::string, std::vector<std::string>> found;
    for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name.ends_with(".log") || name.ends_with(".log.gz")) found[name] = texts_in(entry.path());
    }
    return found;
}

// Keeps each line as "level text"; may do something of its own with it.
struct recording_sink_t : logging::receiver::sink_t {
    explicit recording_sink_t(std::function<void(const logging::line_t&)> own_action = {}) : action(own_action) {}

    void write_line(const logging::line_t& line) override {
        lines.push_back(std::to_string(line.record.level) + " " + std::string(line.piece));
        if (action) action(line);
    }

    std::vector<std::string> lines;
    std::function<void(const logging::line_t&)> action;
};

}  // namespace log_test
