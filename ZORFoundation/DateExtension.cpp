// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/DateExtension.h>

#include <ZORPlatform/Foundation/NSCalendar.h>
#include <ZORPlatform/Foundation/NSDateFormatter.h>
#include <ZORPlatform/Foundation/NSString.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <algorithm>
#include <limits>
#include <optional>

namespace ZORFoundation::DateExtension {
namespace {

using ZORPlatform::NSCalendar;
using ZORPlatform::NSCalendarUnit;
using ZORPlatform::NSDateComponents;
using ZORPlatform::NSDateFormatter;
using ZORPlatform::NSLocale;
using ZORPlatform::preconditionFailure;

constexpr NSCalendarUnit kDateOnly = NSCalendarUnit::year | NSCalendarUnit::month | NSCalendarUnit::day;
constexpr NSCalendarUnit kNineFields = kDateOnly | NSCalendarUnit::hour | NSCalendarUnit::minute |
                                       NSCalendarUnit::second | NSCalendarUnit::weekday |
                                       NSCalendarUnit::weekdayOrdinal | NSCalendarUnit::weekOfYear;

NSDate sum(const NSDate& date, const NSDateComponents& lengths, const char* message) {
    const auto result = NSCalendar::currentCalendar().dateByAddingComponents(lengths, date);
    if (!result) preconditionFailure(message);
    return *result;
}

bool isDaysFromNow(const NSDate& date, std::int64_t days) {
    const NSDate now = NSDate::date();
    return isEqualToDateIgnoringTime(date, days < 0 ? dateBySubtractingDays(now, -days) : dateByAddingDays(now, days));
}

/// The next piece between colons that is not empty, and what follows it.
std::optional<std::u16string_view> takePiece(std::u16string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(u':'), text.size()));
    if (text.empty()) return std::nullopt;
    const std::u16string_view piece = text.substr(0, text.find(u':'));
    text.remove_prefix(piece.size());
    return piece;
}

std::int64_t takeInteger(std::u16string_view& text) {
    const auto piece = takePiece(text);
    if (!piece) preconditionFailure("setTime: the text must have an hour and a minute with \":\" between them");
    const auto number = ZORPlatform::wholeInteger(*piece);
    if (!number) preconditionFailure("setTime: hour and minute must be decimal integers");
    return *number;
}

}  // namespace

bool isEqualToDateIgnoringTime(const NSDate& date, const NSDate& other) {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    return calendar.components(kDateOnly, date) == calendar.components(kDateOnly, other);
}

bool isToday(const NSDate& date) { return isEqualToDateIgnoringTime(date, NSDate::date()); }
bool isYesterday(const NSDate& date) { return isDaysFromNow(date, -1); }
bool isDayBeforeYesterday(const NSDate& date) { return isDaysFromNow(date, -2); }
bool isTomorrow(const NSDate& date) { return isDaysFromNow(date, 1); }
bool isDayAfterTomorrow(const NSDate& date) { return isDaysFromNow(date, 2); }
bool isAfterTomorrow(const NSDate& date) { return isLaterThanDate(date, dateByAddingDays(NSDate::date(), 1)); }

bool isEqualToDate(const NSDate& date, const NSDate& other) noexcept { return date == other; }
bool isLaterThanDate(const NSDate& date, const NSDate& other) noexcept { return date > other; }
bool isLaterOrEqualToDate(const NSDate& date, const NSDate& other) noexcept { return date >= other; }
bool isEarlierThanDate(const NSDate& date, const NSDate& other) noexcept { return date <= other; }

bool isSameYearAsDate(const NSDate& date, const NSDate& other) {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    return calendar.components(NSCalendarUnit::year, date) == calendar.components(NSCalendarUnit::year, other);
}

bool isThisYear(const NSDate& date) { return isSameYearAsDate(date, NSDate::date()); }

std::int64_t year(const NSDate& date) {
    const auto year = NSCalendar::currentCalendar().components(NSCalendarUnit::year, date).year;
    if (!year) preconditionFailure("year: the date must be one of the calendar");
    return *year;
}

NSDate dateByAddingDays(const NSDate& date, std::int64_t days) {
    return sum(date, {.day = days}, "dateByAddingDays: the calendar must have such a date");
}

NSDate dateByAddingMonths(const NSDate& date, std::int64_t months) {
    return sum(date, {.month = months}, "dateByAddingMonths: the calendar must have such a date");
}

NSDate dateByAddingYears(const NSDate& date, std::int64_t years) {
    return sum(date, {.year = years}, "dateByAddingYears: the calendar must have such a date");
}

NSDate dateBySubtractingDays(const NSDate& date, std::int64_t days) {
    if (days == std::numeric_limits<std::int64_t>::min()) {
        preconditionFailure("dateBySubtractingDays: the count must not be the smallest integer");
    }
    return sum(date, {.day = -days}, "dateBySubtractingDays: the calendar must have such a date");
}

NSDate dateAt(const NSDate& date, std::int64_t hours, std::int64_t minutes) {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    NSDateComponents components = calendar.components(kDateOnly, date);
    components.hour = hours;
    components.minute = minutes;
    components.second = 0;
    const auto result = components.day ? calendar.dateFromComponents(components) : std::nullopt;
    if (!result) preconditionFailure("dateAt: the calendar must have such a date");
    return *result;
}

NSDate setTime(const NSDate& date, std::u16string_view time) {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    NSDateComponents components = calendar.components(kNineFields, date);
    const bool isInCalendar = components.day.has_value();
    components.hour = takeInteger(time);
    components.minute = takeInteger(time);
    const auto result = isInCalendar ? calendar.dateFromComponents(components) : std::nullopt;
    if (!result) preconditionFailure("setTime: the calendar must have such a date");
    return *result;
}

std::u16string shortFormatWithLocale(const NSDate& date, std::u16string_view locale) {
    return formatWithTemplate(date, u"d MMM", locale);
}

std::u16string mediumFormatWithLocale(const NSDate& date, std::u16string_view locale) {
    return formatWithTemplate(date, u"EEEEEE d MMM", locale);
}

std::u16string longFormatWithLocale(const NSDate& date, std::u16string_view locale) {
    return formatWithTemplate(date, u"EEEE dd MM yyyy", locale);
}

std::u16string longFormatNoDayFullMonthWithLocale(const NSDate& date, std::u16string_view locale) {
    return formatWithTemplate(date, u"dd MMMM yyyy", locale);
}

std::u16string formatWithTemplate(const NSDate& date, std::u16string_view template_, std::u16string_view locale) {
    const NSLocale arranging(locale);
    NSDateFormatter formatter;
    if (const auto pattern = NSDateFormatter::dateFormatFromTemplate(template_, arranging)) {
        formatter.setDateFormat(*pattern);
    }
    formatter.setLocale(arranging);
    return formatter.stringFromDate(date);
}

}  // namespace ZORFoundation::DateExtension
