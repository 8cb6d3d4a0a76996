#pragma once

#include <functional>
#include <string>
#include <vector>

#include <boost/make_shared.hpp>

#include "common/logging/logger.h"

namespace test_support {

// What tests log on.
inline constexpr logging::component_t test_log("test");

// Keeps each line: a marker for most levels, then the text. May do something of its own with it.
struct recording_sink_t : logging::receiver::sink_t {
    explicit recording_sink_t(std::function<void(const logging::line_t&)> own_action = {}) : action(own_action) {}

    void write_line(const logging::line_t& line) override {
        const char* const markers[] = {"TRC |", "", "", "WARN|", "ERR |"};
        lines.push_back(markers[line.record.level] + std::string(line.piece));
        if (action) action(line);
    }

    std::vector<std::string> lines;
    std::function<void(const logging::line_t&)> action;
};

// The lines that this process logs during the lifetime of this object.
class CRecordedLog {
public:
    CRecordedLog() { logging::process_logger().attach(sink_); }
    ~CRecordedLog() { logging::process_logger().detach(sink_); }
    CRecordedLog(const CRecordedLog&) = delete;
    CRecordedLog& operator=(const CRecordedLog&) = delete;

    const std::vector<std::string>& lines() const { return sink_->lines; }
    void Clear() { sink_->lines.clear(); }

    // Each line with a line feed behind it.
    std::string Text() const {
        std::string text;
        for (const std::string& line : lines()) text += line + "\n";
        return text;
    }

private:
    const boost::shared_ptr<recording_sink_t> sink_ = boost::make_shared<recording_sink_t>();
};

}  // namespace test_support
