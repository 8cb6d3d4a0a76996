#include "common/logging/sink.h"
#include "tests/fuzz/fuzz_units.h"

namespace {

struct joining_sink_t : logging::receiver::sink_t {
    void write_line(const logging::line_t& line) override {
        fuzz::require(line.piece.find('\n') == std::string_view::npos, "no line holds a line feed");
        joined.append(count++ == 0 ? "" : "\n").append(line.piece);
        std::string text;
        append_file_line(text, line);
        fuzz::require(text.ends_with(line.piece), "a line ends in its piece");
    }

    std::string joined;
    std::size_t count = 0;
};

}  // namespace

// The text, a character for each level and each step of depth, the prefix, and the time stamp.
void fuzz::check_lines(const std::string& input) {
    std::vector<std::string> parts = pieces(input, '|', 5);
    logging::record_t record{.prefix = parts[3], .text = parts[0]};
    record.level = static_cast<unsigned>(parts[1].size());
    record.depth = static_cast<unsigned>(parts[2].size());
    joining_sink_t sink;
    sink.write(parts[4], 1U << input.size() % 32, record);
    for (std::size_t at = 0; (at = parts[0].find("\r\n", at)) != std::string::npos;) parts[0].erase(at++, 1);
    require(sink.joined == parts[0], "can be joined");
}
