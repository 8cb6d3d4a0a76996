#include "common/exc/binary_stream.h"

#include <algorithm>
#include <array>
#include <istream>
#include <ostream>

#include "common/exc/raise.h"

namespace exc {
namespace {

void read_bytes(std::istream& source, char* target, std::size_t size) {
    if (!source.read(target, static_cast<std::streamsize>(size))) {
        raise("Serialised exception is cut off.");
    }
}

}  // namespace

std::uint32_t read_u32(std::istream& source) {
    std::array<char, 4> bytes{};
    read_bytes(source, bytes.data(), bytes.size());
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        value |= std::uint32_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
    }
    return value;
}

std::string read_text(std::istream& source) {
    constexpr std::size_t chunk = 4096;
    std::size_t left = read_u32(source);
    std::string text;
    while (left > 0) {
        const std::size_t size = std::min(left, chunk);
        text.resize(text.size() + size);
        read_bytes(source, text.data() + text.size() - size, size);
        left -= size;
    }
    return text;
}

bool read_flag(std::istream& source) {
    char byte = 0;
    read_bytes(source, &byte, 1);
    return byte != 0;
}

void write_u32(std::ostream& target, std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) {
        target.put(static_cast<char>((value >> shift) & 0xffU));
    }
}

void write_text(std::ostream& target, const std::string& text) {
    write_u32(target, static_cast<std::uint32_t>(text.size()));
    target.write(text.data(), static_cast<std::streamsize>(text.size()));
}

void write_flag(std::ostream& target, bool flag) { target.put(flag ? '\1' : '\0'); }

}  // namespace exc
