// The primitives of the serialised form: little-endian numbers, counted texts, one-byte flags.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

namespace exc {

// The readers throw runtime_exc_t "Serialised exception is cut off." if the stream ends early. They allocate no more
// memory than the stream has bytes, whatever length it announces.
std::uint32_t read_u32(std::istream& source);
std::string read_text(std::istream& source);
bool read_flag(std::istream& source);

void write_u32(std::ostream& target, std::uint32_t value);
void write_text(std::ostream& target, const std::string& text);
void write_flag(std::ostream& target, bool flag);

}  // namespace exc
