// Searches long texts for one character, sixteen bytes at a time. Not every runtime library does that.
#pragma once

#include <emmintrin.h>

#include <bit>
#include <cstddef>
#include <string_view>

namespace text {

// Returns the index of the first such unit, or the size of the text if there is none. Char has one byte or two.
template <class Char>
std::size_t find_unit(std::basic_string_view<Char> text, Char wanted) {
    static_assert(sizeof(Char) <= 2);
    constexpr std::size_t units_in_block = 16 / sizeof(Char);
    const __m128i pattern =
        sizeof(Char) == 1 ? _mm_set1_epi8(static_cast<char>(wanted)) : _mm_set1_epi16(static_cast<short>(wanted));
    std::size_t at = 0;
    for (; at + units_in_block <= text.size(); at += units_in_block) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + at));
        const __m128i equal = sizeof(Char) == 1 ? _mm_cmpeq_epi8(block, pattern) : _mm_cmpeq_epi16(block, pattern);
        const auto hits = static_cast<unsigned>(_mm_movemask_epi8(equal));  // one bit for each byte
        if (hits != 0) return at + static_cast<std::size_t>(std::countr_zero(hits)) / sizeof(Char);
    }
    while (at < text.size() && text[at] != wanted) ++at;
    return at;
}

}  // namespace text
