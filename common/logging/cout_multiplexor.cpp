#include "common/logging/cout_multiplexor.h"

#include <utility>

namespace logging {

cout_multiplexor_t::cout_multiplexor_t(std::ostream& stream, line_t consumer)
    : stream_(stream), original_(stream.rdbuf()), consumer_(std::move(consumer)) {
    stream_.rdbuf(this);
}

cout_multiplexor_t::~cout_multiplexor_t() { end(); }

void cout_multiplexor_t::end() noexcept try {
    std::string rest;
    {
        const std::lock_guard guard(mutex_);
        if (std::exchange(ended_, true)) return;
        stream_.rdbuf(original_);
        rest.swap(unfinished_);
    }
    if (!rest.empty()) give_out(rest + '\n');
} catch (const std::exception&) {
    // The copy of an unfinished line is lost; the stream has its buffer back.
}

cout_multiplexor_t::int_type cout_multiplexor_t::overflow(int_type character) {
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
    const char single = traits_type::to_char_type(character);
    return xsputn(&single, 1) == 1 ? character : traits_type::eof();
}

std::streamsize cout_multiplexor_t::xsputn(const char* text, std::streamsize size) {
    std::string lines;
    std::streamsize written = 0;
    {
        const std::lock_guard guard(mutex_);
        written = original_->sputn(text, size);
        if (!ended_) lines = complete_lines({text, static_cast<std::size_t>(written)});
    }
    // The log's lock is taken by the consumer; a sink that prints takes the two in the other order.
    give_out(lines);
    return written;
}

int cout_multiplexor_t::sync() {
    const std::lock_guard guard(mutex_);
    return original_->pubsync();
}

std::string cout_multiplexor_t::complete_lines(std::string_view text) {
    constexpr std::size_t longest_line = 65'536;
    unfinished_.append(text);
    if (unfinished_.size() > longest_line) unfinished_ += '\n';
    std::string rest = unfinished_.substr(unfinished_.rfind('\n') + 1);
    std::string lines = unfinished_.substr(0, unfinished_.size() - rest.size());
    unfinished_ = std::move(rest);
    return lines;
}

void cout_multiplexor_t::give_out(std::string_view lines) const {
    while (!lines.empty()) {
        const std::size_t end = lines.find('\n');
        std::string_view line = lines.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        consumer_(line);
        lines.remove_prefix(end + 1);
    }
}

}  // namespace logging
