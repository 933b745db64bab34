// SPDX-License-Identifier: Apache-2.0
#pragma once

// Four UTF-16 units as the lanes of one machine word, the first unit in the lowest lane, so that units are tested
// and changed, and digits read, four at a time.

#include <cstddef>
#include <cstdint>

namespace ZORPlatform {

/// The four units that begin at `units`. Put together by value, not copied, so that the order of lanes is the same on
/// every machine; compilers make one load of it.
[[nodiscard]] constexpr std::uint64_t fourUnits(const char16_t* units) noexcept {
    return std::uint64_t{units[0]} | std::uint64_t{units[1]} << 16 | std::uint64_t{units[2]} << 32 |
           std::uint64_t{units[3]} << 48;
}

/// Writes the four units of `word` to `to` and behind it: `fourUnits` the other way round.
constexpr void storeFourUnits(std::uint64_t word, char16_t* to) noexcept {
    to[0] = static_cast<char16_t>(word);
    to[1] = static_cast<char16_t>(word >> 16);
    to[2] = static_cast<char16_t>(word >> 32);
    to[3] = static_cast<char16_t>(word >> 48);
}

/// `unit` in every lane.
[[nodiscard]] constexpr std::uint64_t inEveryLane(char16_t unit) noexcept { return unit * 0x0001'0001'0001'0001U; }

/// The decimal digit "0" in every lane.
inline constexpr std::uint64_t kFourZeros = inEveryLane(u'0');

/// The highest bit of every lane.
inline constexpr std::uint64_t kHighestBits = inEveryLane(0x8000);

/// Whether all units are from "0" to U+007F, as letters and digits are.
[[nodiscard]] constexpr bool areFromZeroInAscii(std::uint64_t word) noexcept {
    // A unit below "0" borrows, which sets the highest bits of its own lane.
    return (((word - kFourZeros) | word) & 0xFF80'FF80'FF80'FF80) == 0;
}

/// Not 0 exactly when a unit is `bound` or above. Results of several words may be joined with "|".
///
/// @param bound  at most U+8000
[[nodiscard]] constexpr std::uint64_t lanesFrom(std::uint64_t word, char16_t bound) noexcept {
    // Adding carries what is large enough into a lane's highest bit, unless that is set already; only such a lane
    // carries over.
    return ((word + (kHighestBits - inEveryLane(bound))) | word) & kHighestBits;
}

/// `word` with capitals in place of the small letters of ASCII.
[[nodiscard]] constexpr std::uint64_t withAsciiCapitals(std::uint64_t word) noexcept {
    // Without its highest bit no lane carries over.
    const std::uint64_t low = word & ~kHighestBits;
    const std::uint64_t fromSmallA = low + (kHighestBits - inEveryLane(u'a'));
    const std::uint64_t behindSmallZ = low + (kHighestBits - inEveryLane(u'z' + 1));
    const std::uint64_t small = fromSmallA & ~(behindSmallZ | word) & kHighestBits;
    return word - (small >> 10);
}

/// `word` with "0" in place of its first `count` units, 0 to 3.
[[nodiscard]] constexpr std::uint64_t withLeadingZeros(std::uint64_t word, std::size_t count) noexcept {
    const std::uint64_t kept = ~std::uint64_t{0} << (16 * count);
    return (word & kept) | (kFourZeros & ~kept);
}

/// The digits' values in the lanes, where the units are digits. A lane of another unit is above 9.
[[nodiscard]] constexpr std::uint64_t digitLanes(std::uint64_t word) noexcept { return word ^ kFourZeros; }

/// Not 0 exactly when a lane of `digitLanes` is no digit. Results of several words may be joined with "|".
[[nodiscard]] constexpr std::uint64_t lanesAboveNine(std::uint64_t lanes) noexcept { return lanesFrom(lanes, 10); }

/// Not 0 exactly when a unit is no ASCII digit. Results of several words may be joined with "|".
[[nodiscard]] constexpr std::uint64_t nonDigits(std::uint64_t word) noexcept {
    return lanesAboveNine(digitLanes(word));
}

/// The number that four digits spell. Meaningless unless `nonDigits(word)` is 0.
[[nodiscard]] constexpr std::uint64_t fourDigitsUnchecked(std::uint64_t word) noexcept {
    // The top lane of the product gathers each digit times its weight; the lanes below it stay under 1,000.
    constexpr std::uint64_t kWeights = 1000ULL << 48 | 100ULL << 32 | 10ULL << 16 | 1ULL;
    return digitLanes(word) * kWeights >> 48;
}

static_assert(nonDigits(fourUnits(u"0789")) == 0);
static_assert(nonDigits(fourUnits(u"078:")) != 0);
static_assert(nonDigits(fourUnits(u"/789")) != 0);
static_assert(nonDigits(fourUnits(u"07\uFFFF9")) != 0);
static_assert(nonDigits(fourUnits(u"07\u80309")) != 0);
static_assert(withAsciiCapitals(fourUnits(u"az{`")) == fourUnits(u"AZ{`"));
static_assert(withAsciiCapitals(fourUnits(u"\uFFFF`\uFFFFz")) == fourUnits(u"\uFFFF`\uFFFFZ"));
static_assert(withAsciiCapitals(fourUnits(u"\u0161\u8061\uFF41\u00E1")) == fourUnits(u"\u0161\u8061\uFF41\u00E1"));
static_assert(areFromZeroInAscii(fourUnits(u"09Z\u007F")));
static_assert(!areFromZeroInAscii(fourUnits(u"00/0")));
static_assert(!areFromZeroInAscii(fourUnits(u"000\u0080")));
static_assert(!areFromZeroInAscii(fourUnits(u"\u013000")));
static_assert(fourDigitsUnchecked(fourUnits(u"9075")) == 9075);
static_assert(fourDigitsUnchecked(withLeadingZeros(fourUnits(u"BE68"), 2)) == 68);

}  // namespace ZORPlatform
