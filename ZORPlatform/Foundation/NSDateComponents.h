// SPDX-License-Identifier: Apache-2.0
#pragma once

// The fields that a calendar divides a date into.
//
//     const NSDateComponents christmas{.year = 2018, .month = 12, .day = 25};

#include <ZORPlatform/Foundation/NSTimeZone.h>

#include <cstdint>
#include <limits>
#include <optional>

namespace ZORPlatform {

/// Which fields are wanted: any number of these, joined by "|". Bits that no enumerator names are ignored.
enum class NSCalendarUnit : std::uint64_t {
    era = 0x2,
    year = 0x4,
    month = 0x8,
    day = 0x10,
    hour = 0x20,
    minute = 0x40,
    second = 0x80,
    weekday = 0x200,
    weekdayOrdinal = 0x400,
    weekOfYear = 0x2000,
};

[[nodiscard]] constexpr NSCalendarUnit operator|(NSCalendarUnit left, NSCalendarUnit right) noexcept {
    return static_cast<NSCalendarUnit>(static_cast<std::uint64_t>(left) | static_cast<std::uint64_t>(right));
}

/// Whether `units` holds `unit`.
[[nodiscard]] constexpr bool contains(NSCalendarUnit units, NSCalendarUnit unit) noexcept {
    return (static_cast<std::uint64_t>(units) & static_cast<std::uint64_t>(unit)) != 0;
}

/// What stands for an absent field where an operation gives a plain number.
inline constexpr std::int64_t NSDateComponentUndefined = std::numeric_limits<std::int64_t>::max();

/// Fields of a date, or lengths of time: each may be absent. Values are not bounded, a calendar rolls them over.
struct NSDateComponents {
    std::optional<std::int64_t> era = std::nullopt;             ///< 0 before Christ, 1 after.
    std::optional<std::int64_t> year = std::nullopt;            ///< Of the era, from 1.
    std::optional<std::int64_t> month = std::nullopt;           ///< 1 to 12
    std::optional<std::int64_t> day = std::nullopt;             ///< 1 to 31
    std::optional<std::int64_t> hour = std::nullopt;            ///< 0 to 23
    std::optional<std::int64_t> minute = std::nullopt;          ///< 0 to 59
    std::optional<std::int64_t> second = std::nullopt;          ///< 0 to 59
    std::optional<std::int64_t> weekday = std::nullopt;         ///< 1 for Sunday to 7 for Saturday, in every locale.
    std::optional<std::int64_t> weekdayOrdinal = std::nullopt;  ///< 3 on the third Monday of a month, and so on.
    std::optional<std::int64_t> weekOfYear = std::nullopt;      ///< 1 to 53, by the locale's first weekday.
    /// The zone that the fields are told in; when absent, the calendar's.
    std::optional<NSTimeZone> timeZone = std::nullopt;

    friend bool operator==(const NSDateComponents&, const NSDateComponents&) noexcept = default;
};

}  // namespace ZORPlatform
