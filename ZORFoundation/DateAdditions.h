// SPDX-License-Identifier: Apache-2.0
#pragma once

// Days, months and years of dates, for callers who take an absent result for an answer. Its younger twin in
// DateExtension.h overlaps with it on purpose and stops the process where these give nothing.
//
//     ZORAdditions::zor_dateOnly(NSDate::date());                  // the last local midnight
//     ZORAdditions::zor_yearsFromDate(birthday, NSDate::date());   // an age

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSDate.h>
#include <ZORPlatform/Foundation/NSDateComponents.h>

#include <cstdint>
#include <optional>

namespace ZORFoundation {

using ZORPlatform::NSCalendarUnit;
using ZORPlatform::NSDate;
using ZORPlatform::NSDateComponents;
using ZORPlatform::NSDateComponentUndefined;

/// All calendar work is done by the user's calendar in the user's time zone, as `NSCalendar::currentCalendar()` gives
/// it at the call. "Now" is `NSDate::date()`. Absent is what the calendar cannot name: a date about 5.8 million years
/// away, or one that is no number. Thread-safe.
namespace ZORAdditions {

/// `zor_tomorrow`
///
/// Now plus one calendar day: the same local time tomorrow, however long the day.
[[nodiscard]] ZOR_EXPORT std::optional<NSDate> zor_tomorrow();

/// `zor_dateWithOffset:`
///
/// Now plus `days` calendar days, which may be negative.
[[nodiscard]] ZOR_EXPORT std::optional<NSDate> zor_dateWithOffset(std::int64_t days);

/// `zor_dateOnly`
///
/// Local midnight of the date's day; the first moment of the day where midnight is skipped. The era is no part of a
/// day: one before Christ comes back as that of the same year after.
[[nodiscard]] ZOR_EXPORT std::optional<NSDate> zor_dateOnly(const NSDate& date);

/// `zor_yearsFromDate:toDate:`
///
/// Whole years between two dates: as many as can be added to the first without passing the second, where 29 February
/// becomes the 28th in a common year. Negative when the second is earlier, by the same rule backwards.
///
/// @return `NSDateComponentUndefined` when one of the dates is beyond the calendar
[[nodiscard]] ZOR_EXPORT std::int64_t zor_yearsFromDate(const NSDate& date, const NSDate& toDate);

/// `zor_year`
///
/// The year of the date's era; `NSDateComponentUndefined` for a date beyond the calendar.
[[nodiscard]] ZOR_EXPORT std::int64_t zor_year(const NSDate& date);
/// `zor_month`
///
/// 1 to 12; `NSDateComponentUndefined` for a date beyond the calendar.
[[nodiscard]] ZOR_EXPORT std::int64_t zor_month(const NSDate& date);
/// `zor_day`
///
/// The day of the month, 1 to 31; `NSDateComponentUndefined` for a date beyond the calendar.
[[nodiscard]] ZOR_EXPORT std::int64_t zor_day(const NSDate& date);

/// `dateComponentsForComponent:`
///
/// The fields of the date that `units` names; the others are absent, and so are all of a date beyond the calendar.
[[nodiscard]] ZOR_EXPORT NSDateComponents dateComponentsForComponent(const NSDate& date, NSCalendarUnit units);

/// `zor_dateFromDay:month:year:`
///
/// Midnight UTC of a day, whatever the user's time zone: `zor_dateOnly` of it is another moment west of Greenwich, and
/// east of it. Numbers out of their range roll over: day 0 is the last one of the month before.
[[nodiscard]] ZOR_EXPORT std::optional<NSDate> zor_dateFromDay(std::int64_t day, std::int64_t month, std::int64_t year);

}  // namespace ZORAdditions
}  // namespace ZORFoundation
