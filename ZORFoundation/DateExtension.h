// SPDX-License-Identifier: Apache-2.0
#pragma once

// Questions about dates, dates moved by days, months and years, and their display in the order of a locale. Formatters
// of fixed patterns are in ZORDateFormatters.h; the older operations in DateAdditions.h overlap with these on purpose
// and give an absent result where these stop the process.
//
//     DateExtension::isToday(payment);
//     DateExtension::dateByAddingMonths(due, 1);                  // 31 January becomes 28 or 29 February
//     DateExtension::longFormatWithLocale(payment, u"nl_BE");     // u"maandag 05/03/2018"

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSDate.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace ZORFoundation {

using ZORPlatform::NSDate;

/// All calendar work is done by the user's calendar in the user's time zone, as `NSCalendar::currentCalendar()` gives
/// it at the call. "Now" is `NSDate::date()`. A date about 5.8 million years away, or one that is no number, has no day
/// and no year: two such dates have the same ones. Thread-safe.
namespace DateExtension {

/// `isEqualToDateIgnoringTime(_:)`
///
/// Whether two dates are on one day.
[[nodiscard]] ZOR_EXPORT bool isEqualToDateIgnoringTime(const NSDate& date, const NSDate& other);

/// `isToday()`
[[nodiscard]] ZOR_EXPORT bool isToday(const NSDate& date);
/// `isYesterday()`
[[nodiscard]] ZOR_EXPORT bool isYesterday(const NSDate& date);
/// `isDayBeforeYesterday()`
[[nodiscard]] ZOR_EXPORT bool isDayBeforeYesterday(const NSDate& date);
/// `isTomorrow()`
[[nodiscard]] ZOR_EXPORT bool isTomorrow(const NSDate& date);
/// `isDayAfterTomorrow()`
[[nodiscard]] ZOR_EXPORT bool isDayAfterTomorrow(const NSDate& date);

/// `isAfterTomorrow()`
///
/// Whether the date is later than now plus one calendar day. The time of day counts, by design: a date later in
/// tomorrow's day than now is after tomorrow.
[[nodiscard]] ZOR_EXPORT bool isAfterTomorrow(const NSDate& date);

/// `isEqualToDate(_:)`
///
/// Whether two dates are the same moment.
[[nodiscard]] ZOR_EXPORT bool isEqualToDate(const NSDate& date, const NSDate& other) noexcept;
/// `isLaterThanDate(_:)`
///
/// False for equal dates.
[[nodiscard]] ZOR_EXPORT bool isLaterThanDate(const NSDate& date, const NSDate& other) noexcept;
/// `isLaterOrEqualToDate(_:)`
[[nodiscard]] ZOR_EXPORT bool isLaterOrEqualToDate(const NSDate& date, const NSDate& other) noexcept;
/// `isEarlierThanDate(_:)`
///
/// True for equal dates, too, unlike `isLaterThanDate`: callers rely on both.
[[nodiscard]] ZOR_EXPORT bool isEarlierThanDate(const NSDate& date, const NSDate& other) noexcept;

/// `isSameYearAsDate(_:)`
///
/// Whether two dates are in years of one number.
[[nodiscard]] ZOR_EXPORT bool isSameYearAsDate(const NSDate& date, const NSDate& other);
/// `isThisYear()`
[[nodiscard]] ZOR_EXPORT bool isThisYear(const NSDate& date);

/// `year()`
///
/// The year of the date's era. Stops the process for a date that has none.
[[nodiscard]] ZOR_EXPORT std::int64_t year(const NSDate& date);

/// `dateByAddingDays(_:)`, for values and for the platform's date objects, which are one type here
///
/// The same local time so many days later, or earlier for a negative count. A time that the clocks skip on that day is
/// moved forward by as much as they are. Stops the process when the calendar has no such date.
[[nodiscard]] ZOR_EXPORT NSDate dateByAddingDays(const NSDate& date, std::int64_t days);
/// `dateByAddingMonths(_:)`
///
/// As `dateByAddingDays`, by months; the day of the month is the last one of a month that is too short for it.
[[nodiscard]] ZOR_EXPORT NSDate dateByAddingMonths(const NSDate& date, std::int64_t months);
/// `dateByAddingYears(_:)`
///
/// As `dateByAddingMonths`, by years.
[[nodiscard]] ZOR_EXPORT NSDate dateByAddingYears(const NSDate& date, std::int64_t years);
/// `dateBySubtractingDays(_:)`
///
/// `dateByAddingDays` of the negated count. Stops the process, too, when the count is the smallest integer, which
/// cannot be negated.
[[nodiscard]] ZOR_EXPORT NSDate dateBySubtractingDays(const NSDate& date, std::int64_t days);

/// `dateAt(hours:minutes:)`
///
/// A time of the date's day, with 0 seconds. Numbers out of their range roll over. Stops the process when the calendar
/// has no such date. Unlike it, `setTime` keeps the seconds.
[[nodiscard]] ZOR_EXPORT NSDate dateAt(const NSDate& date, std::int64_t hours, std::int64_t minutes);

/// `setTime(time:)`
///
/// The date with another hour and minute and the seconds that it had; a fraction of a second is dropped. Unlike it,
/// `dateAt` sets the seconds to 0.
///
/// @param time  hour and minute with ":" between them, "14:30" or "7:5". Empty pieces do not count, and what follows
///              the second piece is ignored: "07:05:59" is 07:05. Each of the two is a decimal integer in ASCII digits,
///              with a sign or not and nothing else; out of its range it rolls over: "25:00" is 01:00 of the next day.
///              Any other text stops the process, and so does a result that the calendar has no date for
[[nodiscard]] ZOR_EXPORT NSDate setTime(const NSDate& date, std::u16string_view time);

/// `shortFormatWithLocale(locale:)`
///
/// Day and abbreviated month: `formatWithTemplate` with "d MMM". "5 mrt", "Mar 5".
[[nodiscard]] ZOR_EXPORT std::u16string shortFormatWithLocale(const NSDate& date, std::u16string_view locale);
/// `mediumFormatWithLocale(locale:)`
///
/// With the shortest name of the weekday: "EEEEEE d MMM". "ma 5 mrt", "Mo, Mar 5".
[[nodiscard]] ZOR_EXPORT std::u16string mediumFormatWithLocale(const NSDate& date, std::u16string_view locale);
/// `longFormatWithLocale(locale:)`
///
/// Weekday and date in numbers: "EEEE dd MM yyyy". "maandag 05/03/2018", "Monday, 03/05/2018".
[[nodiscard]] ZOR_EXPORT std::u16string longFormatWithLocale(const NSDate& date, std::u16string_view locale);
/// `longFormatNoDayFullMonthWithLocale(locale:)`
///
/// Without the weekday, the month in full: "dd MMMM yyyy". "05 maart 2018", "March 05, 2018".
[[nodiscard]] ZOR_EXPORT std::u16string longFormatNoDayFullMonthWithLocale(const NSDate& date,
                                                                           std::u16string_view locale);

/// `formatWithTemplate(template:locale:)`
///
/// The date as a locale arranges the fields that a template asks for (Unicode Technical Standard 35, part 4): their
/// order, the separators and the forms are the locale's.
///
/// @param template_  field symbols in any order, "yMMMd"; all that is no letter is ignored
/// @param locale     an identifier, "nl_BE"
/// @return empty when the template asks for no field, and for a date that the calendar does not reach
[[nodiscard]] ZOR_EXPORT std::u16string formatWithTemplate(const NSDate& date, std::u16string_view template_,
                                                           std::u16string_view locale);

}  // namespace DateExtension
}  // namespace ZORFoundation
