// SPDX-License-Identifier: Apache-2.0
#pragma once

// Four UTF-16 units as the lanes of one machine word, the first unit in the lowest lane, so that digits are tested
// and read four at a time.

#include <cstddef>
#include <cstdint>

namespace ZORFoundation {

/// The decimal digit "0" in every lane.
inline constexpr std::uint64_t kFourZeros = 0x0030'0030'0030'0030;

/// The four units that begin at `units`. Put together by value, not copied, so that the order of lanes is the same on
/// every machine; compilers make one load of it.
[[nodiscard]] constexpr std::uint64_t fourUnits(const char16_t* units) noexcept {
    return std::uint64_t{units[0]} | std::uint64_t{units[1]} << 16 | std::uint64_t{units[2]} << 32 |
           std::uint64_t{units[3]} << 48;
}

/// `word` with "0" in place of its first `count` units, 0 to 3.
[[nodiscard]] constexpr std::uint64_t withLeadingZeros(std::uint64_t word, std::size_t count) noexcept {
    const std::uint64_t kept = ~std::uint64_t{0} << (16 * count);
    return (word & kept) | (kFourZeros & ~kept);
}

/// The digits' values in the lanes, where the units are digits. A lane of another unit is above 9.
[[nodiscard]] constexpr std::uint64_t digitLanes(std::uint64_t word) noexcept { return word ^ kFourZeros; }

/// Not 0 exactly when a lane of `digitLanes` is no digit. Results of several words may be joined with "|".
[[nodiscard]] constexpr std::uint64_t lanesAboveNine(std::uint64_t lanes) noexcept {
    // Adding carries 10 and more into a lane's highest bit, unless that is set already; only such a lane carries over.
    constexpr std::uint64_t kHighest = 0x8000'8000'8000'8000;
    constexpr std::uint64_t kUpToNine = 0x7FF6'7FF6'7FF6'7FF6;
    return ((lanes + kUpToNine) | lanes) & kHighest;
}

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
static_assert(fourDigitsUnchecked(fourUnits(u"9075")) == 9075);
static_assert(fourDigitsUnchecked(withLeadingZeros(fourUnits(u"BE68"), 2)) == 68);

}  // namespace ZORFoundation
