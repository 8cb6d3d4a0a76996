// What several logging tests share: reading logs and archives.
#pragma once

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/support/demo_host.h"

#include <zlib.h>

namespace log_test {

namespace fs = std::filesystem;
using test_support::CTestFolder;
using test_support::FileText;
using test_support::WriteFileText;
using texts_t = std::vector<std::string>;

// The content of a gzip file; a file that is cut off or damaged fails the test.
inline std::string read_gzip(const fs::path& path) {
    const gzFile file = gzopen_w(path.c_str(), "rb");
    std::string content;
    int byte = 0;
    while ((byte = gzgetc(file)) >= 0) content += static_cast<char>(byte);
    EXPECT_TRUE(gzeof(file)) << path;
    EXPECT_EQ(gzclose(file), Z_OK) << path;
    return content;
}

// The part of each line of a log or an archive after time stamp and thread; each line must end in CRLF.
inline texts_t texts_in(const fs::path& path) {
    texts_t texts;
    std::istringstream stream(path.extension() == ".gz" ? read_gzip(path) : FileText(path));
    for (std::string line; std::getline(stream, line);) {
        const std::size_t begin = line.find("> ");
        const bool complete = !stream.eof() && line.ends_with('\r') && begin != std::string::npos;
        EXPECT_TRUE(complete) << path << ": " << line;
        if (complete) texts.push_back(line.substr(begin + 2, line.size() - begin - 3));
    }
    return texts;
}

// The same of all archives of A.log, the oldest first, and of itself.
inline texts_t all_texts_in(const CTestFolder& folder) {
    texts_t texts;
    for (int age = 99; age >= -1; --age) {
        const std::string number = age > 0 ? "." + std::to_string(age) : "";
        const fs::path path = folder / ("A" + number + (age < 0 ? ".log" : ".log.gz"));
        if (fs::exists(path)) std::ranges::move(texts_in(path), std::back_inserter(texts));
    }
    return texts;
}

}  // namespace log_test
