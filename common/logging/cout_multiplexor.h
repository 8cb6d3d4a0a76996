#pragma once

#include <functional>
#include <mutex>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace logging {

// Stands between a stream and its buffer: passes everything on and gives out each complete line a second time. Any
// thread may write to the stream.
class cout_multiplexor_t : public std::streambuf {
public:
    using line_t = std::function<void(std::string_view line)>;

    // Takes the place of the stream's buffer. The consumer gets lines without their line ends, and is called without
    // any lock: it may itself write to the stream.
    cout_multiplexor_t(std::ostream& stream, line_t consumer);
    ~cout_multiplexor_t() override;

    // Gives out what is left of a line and puts the stream's buffer back. After that the object only passes on.
    void end() noexcept;

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;

private:
    std::string complete_lines(std::string_view text);
    void give_out(std::string_view lines) const;

    std::ostream& stream_;
    std::streambuf* const original_;
    line_t consumer_;
    std::mutex mutex_;
    std::string unfinished_;
    bool ended_ = false;
};

}  // namespace logging
