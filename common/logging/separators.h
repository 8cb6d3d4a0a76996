// The lines that set blocks of the log apart.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace logging {

template <char Character, std::size_t Length>
inline constexpr auto separator_characters = [] {
    std::array<char, Length> line{};
    line.fill(Character);
    return line;
}();

template <char Character, std::size_t Length>
inline constexpr std::string_view separator_line{separator_characters<Character, Length>.data(), Length};

inline constexpr std::string_view block_separator = separator_line<'=', 77>;
inline constexpr std::string_view report_separator = separator_line<'/', 74>;

}  // namespace logging
