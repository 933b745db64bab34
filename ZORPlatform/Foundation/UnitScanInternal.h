// SPDX-License-Identifier: Apache-2.0
#pragma once

// Where a unit stands in a text.

#include <ZORPlatform/Foundation/FourUnitsInternal.h>

#include <bit>
#include <cstddef>
#include <string_view>

namespace ZORPlatform {

namespace detail {

/// The highest bit of every lane that holds `unit`, and of no other.
constexpr std::uint64_t lanesOf(const char16_t* units, char16_t unit) noexcept {
    const std::uint64_t difference = fourUnits(units) ^ inEveryLane(unit);
    // Without its highest bit no lane carries over.
    return ~(lanesFrom(difference & ~kHighestBits, 1) | difference) & kHighestBits;
}

constexpr std::size_t firstLane(std::uint64_t lanes) noexcept {
    return static_cast<std::size_t>(std::countr_zero(lanes)) / 16;
}

}  // namespace detail

/// The first position from `begin` on where `text` has `unit`, or the text's size.
constexpr std::size_t findUnit(std::u16string_view text, char16_t unit, std::size_t begin) noexcept {
    std::size_t at = begin;
    for (; at + 4 <= text.size(); at += 4) {
        const std::uint64_t lanes = detail::lanesOf(&text[at], unit);
        if (lanes != 0) return at + detail::firstLane(lanes);
    }
    while (at < text.size() && text[at] != unit) ++at;
    return at;
}

/// The first position from `begin` on where `text` has `unit` twice in a row, or the text's size.
constexpr std::size_t findUnitPair(std::u16string_view text, char16_t unit, std::size_t begin) noexcept {
    std::size_t at = begin;
    for (; at + 4 < text.size(); at += 4) {
        const std::uint64_t lanes = detail::lanesOf(&text[at], unit) & detail::lanesOf(&text[at + 1], unit);
        if (lanes != 0) return at + detail::firstLane(lanes);
    }
    while (at + 1 < text.size() && (text[at] != unit || text[at + 1] != unit)) ++at;
    return at + 1 < text.size() ? at : text.size();
}

}  // namespace ZORPlatform
