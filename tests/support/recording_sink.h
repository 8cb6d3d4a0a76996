// Collects the lines of each record that is logged during its lifetime: the marker if there is one, then the text.
#pragma once

#include <string>
#include <vector>

#include <boost/make_shared.hpp>

#include "common/logging/logger.h"

namespace test_support {

class CRecordedLog {
public:
    CRecordedLog() { logging::process_logger().attach(sink_); }
    ~CRecordedLog() { logging::process_logger().detach(sink_); }
    CRecordedLog(const CRecordedLog&) = delete;
    CRecordedLog& operator=(const CRecordedLog&) = delete;

    const std::vector<std::string>& lines() const { return sink_->lines; }
    void Clear() { sink_->lines.clear(); }
    bool Contains(const std::string& text) const {
        for (const std::string& line : lines()) {
            if (line.find(text) != std::string::npos) return true;
        }
        return false;
    }

private:
    struct sink_t : logging::receiver::sink_t {
        void write_line(const logging::line_t& line) override {
            const unsigned level = line.record.level;
            const char* marker = level == 3 ? "WARN|" : level == 4 ? "ERR |" : "";
            lines.push_back(marker + std::string(line.piece));
        }
        std::vector<std::string> lines;
    };

    boost::shared_ptr<sink_t> sink_ = boost::make_shared<sink_t>();
};

}  // namespace test_support
