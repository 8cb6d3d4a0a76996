#include "common/logging/cout_multiplexor.h"

#include <utility>

namespace logging {

cout_multiplexor_t::cout_multiplexor_t(std::ostream& stream, consumer_t consumer)
    : stream_(stream), original_(stream.rdbuf()), consumer_(std::move(consumer)) {
    stream_.rdbuf(this);
}

cout_multiplexor_t::~cout_multiplexor_t() {
    stream_.rdbuf(original_);
    if (!unfinished_.empty()) consumer_(unfinished_);
}

cout_multiplexor_t::int_type cout_multiplexor_t::overflow(int_type character) {
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
    const char single = traits_type::to_char_type(character);
    return xsputn(&single, 1) == 1 ? character : traits_type::eof();
}

std::streamsize cout_multiplexor_t::xsputn(const char* text, std::streamsize size) {
    constexpr std::size_t max_line_size = 65'536;
    std::string lines;
    std::streamsize written = 0;
    {
        const std::lock_guard guard(mutex_);
        written = original_->sputn(text, size);
        unfinished_.append(text, static_cast<std::size_t>(written));
        if (unfinished_.size() > max_line_size) unfinished_ += '\n';
        const std::size_t end = unfinished_.rfind('\n') + 1;  // 0 when there is none
        lines = unfinished_.substr(0, end);
        unfinished_.erase(0, end);
    }
    if (lines.empty()) return written;
    lines.pop_back();
    if (lines.ends_with('\r')) lines.pop_back();
    // The consumer takes the log's lock; a sink that prints takes the two locks in the other order.
    consumer_(lines);
    return written;
}

int cout_multiplexor_t::sync() {
    const std::lock_guard guard(mutex_);
    return original_->pubsync();
}

}  // namespace logging
