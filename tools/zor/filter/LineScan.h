// SPDX-License-Identifier: Apache-2.0
#pragma once

// One pass over the bytes of a line: where it ends, what is in it that needs care, and its UTF-16 form.

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zor {

/// Bytes behind the last line that a scan may read, whatever they hold.
inline constexpr std::size_t kScanSlack = 16;

/// Bytes whose presence in a line sends it off the fast road.
struct LineTraits {
    bool nonAscii = false;
    bool nul = false;
    bool carriageReturn = false;
    bool backslash = false;

    friend bool operator==(const LineTraits&, const LineTraits&) = default;
};

/// A line of plain bytes (ASCII without NUL), widened.
template <std::size_t Units>
struct WidenedLine {
    static constexpr std::size_t kNotPlain = static_cast<std::size_t>(-1);

    /// Units before the LF; kNotPlain when the line is longer than `Units` or has a byte that is not plain.
    std::size_t length = kNotPlain;
    std::array<char16_t, Units> units;  // Only the first `length` are ever read.
};

#ifdef __SSE2__

namespace detail {

inline __m128i load(const char* bytes) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)); }

inline unsigned mask(__m128i bytes) { return static_cast<unsigned>(_mm_movemask_epi8(bytes)); }

inline unsigned equalMask(__m128i bytes, char byte) { return mask(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(byte))); }

}  // namespace detail

/// Widens the line at `begin`, which ends with a LF or runs on for kScanSlack bytes more than `Units`.
template <std::size_t Units>
inline void widenLine(const char* begin, WidenedLine<Units>& line) {
    static_assert(Units % 16 == 0);
    const __m128i zero = _mm_setzero_si128();
    for (std::size_t at = 0; at < Units; at += 16) {
        const __m128i bytes = detail::load(begin + at);
        auto* units = reinterpret_cast<__m128i*>(line.units.data() + at);
        _mm_storeu_si128(units, _mm_unpacklo_epi8(bytes, zero));
        _mm_storeu_si128(units + 1, _mm_unpackhi_epi8(bytes, zero));
        // Signed: bytes from 0x80 are below zero, so "not above zero" is everything that is not plain.
        const unsigned odd = ~detail::mask(_mm_cmpgt_epi8(bytes, zero)) & 0xFFFFU;
        const unsigned ends = detail::equalMask(bytes, '\n');
        if (((odd | ends) != 0)) {
            const int end = std::countr_zero(ends);  // 32 without a LF here.
            line.length = end <= std::countr_zero(odd) && ends != 0 ? at + static_cast<std::size_t>(end)
                                                                    : WidenedLine<Units>::kNotPlain;
            return;
        }
    }
    line.length = WidenedLine<Units>::kNotPlain;
}

#else

template <std::size_t Units>
inline void widenLine(const char* begin, WidenedLine<Units>& line) {
    line.length = WidenedLine<Units>::kNotPlain;
    for (std::size_t at = 0; at < Units; ++at) {
        const char byte = begin[at];
        if (byte == '\n') {
            line.length = at;
            return;
        }
        if (static_cast<signed char>(byte) <= 0) return;
        line.units[at] = static_cast<char16_t>(byte);
    }
}

#endif

/// What is in `line` that needs care.
inline LineTraits lineTraits(std::string_view line) {
    LineTraits traits;
    std::size_t at = 0;
#ifdef __SSE2__
    unsigned nonAscii = 0;
    unsigned nul = 0;
    unsigned carriageReturn = 0;
    unsigned backslash = 0;
    for (; at + 16 <= line.size(); at += 16) {
        const __m128i bytes = detail::load(line.data() + at);
        nonAscii |= detail::mask(bytes);
        nul |= detail::equalMask(bytes, '\0');
        carriageReturn |= detail::equalMask(bytes, '\r');
        backslash |= detail::equalMask(bytes, '\\');
    }
    traits = {nonAscii != 0, nul != 0, carriageReturn != 0, backslash != 0};
#endif
    for (; at < line.size(); ++at) {
        const char byte = line[at];
        traits.nonAscii = traits.nonAscii || static_cast<signed char>(byte) < 0;
        traits.nul = traits.nul || byte == '\0';
        traits.carriageReturn = traits.carriageReturn || byte == '\r';
        traits.backslash = traits.backslash || byte == '\\';
    }
    return traits;
}

}  // namespace zor
