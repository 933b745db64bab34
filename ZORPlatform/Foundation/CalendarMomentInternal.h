// SPDX-License-Identifier: Apache-2.0
#pragma once

// A date taken apart for calendar work: whole seconds as an integer, and the rest that no calendar field holds.

#include <ZORPlatform/Foundation/NSDate.h>

#include <cmath>
#include <cstdint>
#include <optional>

namespace ZORPlatform {

inline constexpr std::int64_t kSecondsPerDay = 86400;

/// How far the calendar reaches, in seconds since 1970: about 5.8 million years either way, which is where ICU's ends.
inline constexpr std::int64_t kFirstCalendarSecond = -184303902528000;
inline constexpr std::int64_t kLastCalendarSecond = 183882168921600;

struct CalendarMoment {
    std::int64_t seconds;  ///< Since 1970, rounded down.
    double fraction;       ///< What is left, at least 0 and below 1.
};

[[nodiscard]] constexpr bool isInCalendar(std::int64_t secondsSince1970) noexcept {
    return secondsSince1970 >= kFirstCalendarSecond && secondsSince1970 <= kLastCalendarSecond;
}

/// Absent for a date beyond the calendar's reach, and for not-a-number.
[[nodiscard]] inline std::optional<CalendarMoment> calendarMoment(const NSDate& date) noexcept {
    constexpr auto kReference = static_cast<std::int64_t>(NSDate::kReferenceSince1970);
    const double whole = std::floor(date.timeIntervalSinceReferenceDate());
    if (!(whole >= static_cast<double>(kFirstCalendarSecond - kReference) &&
          whole <= static_cast<double>(kLastCalendarSecond - kReference))) {
        return std::nullopt;
    }
    return CalendarMoment{static_cast<std::int64_t>(whole) + kReference, date.timeIntervalSinceReferenceDate() - whole};
}

[[nodiscard]] constexpr NSDate calendarDate(const CalendarMoment& moment) noexcept {
    return NSDate::sinceReferenceDate(
        static_cast<double>(moment.seconds - static_cast<std::int64_t>(NSDate::kReferenceSince1970)) + moment.fraction);
}

/// Rounded down, for a positive divisor.
[[nodiscard]] constexpr std::int64_t flooredQuotient(std::int64_t number, std::int64_t divisor) noexcept {
    return (number >= 0 ? number : number - (divisor - 1)) / divisor;
}

}  // namespace ZORPlatform
