// SPDX-License-Identifier: Apache-2.0
#pragma once

// Days of the proleptic Gregorian calendar as plain arithmetic, for any year that 64 bits can count.

#include <cstdint>

namespace ZORPlatform {

struct GregorianDay {
    std::int64_t year;
    unsigned month;  ///< 1 to 12
    unsigned day;    ///< 1 to 31
};

/// Days from 1970-01-01. Months and days outside their range roll over into the next or previous ones. The year must be
/// within ±10^15.
///
/// The year is counted from March, so that the leap day comes last, and in eras of 400 years, which all have the same
/// number of days.
[[nodiscard]] constexpr std::int64_t daysSince1970(std::int64_t year, std::int64_t month, std::int64_t day) noexcept {
    const std::int64_t months = year * 12 + (month - 3);
    const std::int64_t marchYear = (months >= 0 ? months : months - 11) / 12;
    const std::int64_t monthFromMarch = months - marchYear * 12;
    const std::int64_t era = (marchYear >= 0 ? marchYear : marchYear - 399) / 400;
    const std::int64_t yearOfEra = marchYear - era * 400;
    const std::int64_t dayOfYear = (153 * monthFromMarch + 2) / 5;
    return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear + (day - 1) - 719468;
}

/// The inverse, for days within ±10^17.
[[nodiscard]] constexpr GregorianDay gregorianDay(std::int64_t daysSince1970) noexcept {
    const std::int64_t days = daysSince1970 + 719468;
    const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const std::int64_t dayOfEra = days - era * 146097;
    const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
    const auto day = static_cast<unsigned>(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1);
    const auto month = static_cast<unsigned>(monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9);
    return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month, day};
}

static_assert(daysSince1970(1970, 1, 1) == 0 && daysSince1970(2001, 1, 1) == 11323);
static_assert(daysSince1970(2023, 2, 30) == daysSince1970(2023, 3, 2) &&
              daysSince1970(2023, 13, 1) == daysSince1970(2024, 1, 1));
static_assert(gregorianDay(-1).year == 1969 && gregorianDay(19782).day == 29 && gregorianDay(19782).month == 2);

}  // namespace ZORPlatform
