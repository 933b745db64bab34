// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/DateAdditions.h>

#include <ZORPlatform/Foundation/NSCalendar.h>
#include <ZORPlatform/Foundation/NSTimeZone.h>

namespace ZORFoundation::ZORAdditions {
namespace {

using ZORPlatform::NSCalendar;
using ZORPlatform::NSTimeZone;

constexpr NSCalendarUnit kDateOnly = NSCalendarUnit::year | NSCalendarUnit::month | NSCalendarUnit::day;

}  // namespace

std::optional<NSDate> zor_tomorrow() { return zor_dateWithOffset(1); }

std::optional<NSDate> zor_dateWithOffset(std::int64_t days) {
    return NSCalendar::currentCalendar().dateByAddingComponents({.day = days}, NSDate::date());
}

std::optional<NSDate> zor_dateOnly(const NSDate& date) {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    const NSDateComponents day = calendar.components(kDateOnly, date);
    return day.day ? calendar.dateFromComponents(day) : std::nullopt;
}

std::int64_t zor_yearsFromDate(const NSDate& date, const NSDate& toDate) {
    return NSCalendar::currentCalendar()
        .components(NSCalendarUnit::year, date, toDate)
        .year.value_or(NSDateComponentUndefined);
}

std::int64_t zor_year(const NSDate& date) {
    return dateComponentsForComponent(date, NSCalendarUnit::year).year.value_or(NSDateComponentUndefined);
}

std::int64_t zor_month(const NSDate& date) {
    return dateComponentsForComponent(date, NSCalendarUnit::month).month.value_or(NSDateComponentUndefined);
}

std::int64_t zor_day(const NSDate& date) {
    return dateComponentsForComponent(date, NSCalendarUnit::day).day.value_or(NSDateComponentUndefined);
}

NSDateComponents dateComponentsForComponent(const NSDate& date, NSCalendarUnit units) {
    return NSCalendar::currentCalendar().components(units, date);
}

std::optional<NSDate> zor_dateFromDay(std::int64_t day, std::int64_t month, std::int64_t year) {
    return NSCalendar::currentCalendar().dateFromComponents(
        {.year = year, .month = month, .day = day, .timeZone = NSTimeZone::timeZoneWithName(u"UTC")});
}

}  // namespace ZORFoundation::ZORAdditions
