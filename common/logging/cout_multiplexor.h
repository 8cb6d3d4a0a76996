#pragma once

#include <functional>
#include <mutex>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace logging {

// Stands between a stream and its buffer: passes everything on and hands each complete line to a consumer too. Any
// thread may write to the stream, except while this object is created or destroyed.
class cout_multiplexor_t : public std::streambuf {
public:
    using consumer_t = std::function<void(std::string_view lines)>;

    // Takes the place of the stream's buffer. The consumer gets one or more lines without the last line end. It is
    // called without any lock, so that it may write to the stream itself, and must not throw.
    cout_multiplexor_t(std::ostream& stream, consumer_t consumer);

    // Hands over what is left of a line and puts the stream's buffer back.
    ~cout_multiplexor_t() override;

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;

private:
    std::ostream& stream_;
    std::streambuf* const original_;
    consumer_t consumer_;
    std::mutex mutex_;
    std::string unfinished_;
};

}  // namespace logging
