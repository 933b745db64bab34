// SPDX-License-Identifier: Apache-2.0
#pragma once

// Dates as people count them: years, months and days in a time zone.
//
//     const NSCalendar calendar = NSCalendar::currentCalendar();
//     calendar.components(NSCalendarUnit::year, date).year;                          // 2018
//     calendar.dateByAddingComponents({.month = 1}, date);                           // the same day of next month
//     calendar.dateFromComponents({.year = 2018, .month = 3, .day = 5});             // midnight of that day

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSDate.h>
#include <ZORPlatform/Foundation/NSDateComponents.h>
#include <ZORPlatform/Foundation/NSLocale.h>
#include <ZORPlatform/Foundation/NSTimeZone.h>

#include <optional>

namespace ZORPlatform {

/// The Gregorian calendar of a locale in a time zone, as a value. Before 15 October 1582 it is the Julian one: the 15th
/// follows on the 4th. It reaches about 5.8 million years either way; dates beyond, and those that are no number, have
/// no fields. Asking one calendar from several threads at once is safe while none changes it.
///
/// A local time that the clocks skip is moved forward by as much as they are: 02:30 becomes 03:30. Of a local time that
/// they show twice, the first is meant.
class ZOR_EXPORT NSCalendar {
public:
    /// `currentCalendar`: the user's, with the locale and the time zone that `HostEnvironment` names at the moment it
    /// is asked for.
    [[nodiscard]] static NSCalendar currentCalendar();

    NSCalendar(const NSLocale& locale, const NSTimeZone& timeZone) noexcept : locale_(locale), timeZone_(timeZone) {}
    // No moves: neither have a locale and a time zone.
    NSCalendar(const NSCalendar&) noexcept = default;
    NSCalendar& operator=(const NSCalendar&) noexcept = default;
    ~NSCalendar() = default;

    /// `locale`: it decides about the numbers of weeks and nothing else.
    [[nodiscard]] const NSLocale& locale() const noexcept { return locale_; }
    /// `setLocale:`
    void setLocale(const NSLocale& locale) noexcept { locale_ = locale; }

    /// `timeZone`
    [[nodiscard]] const NSTimeZone& timeZone() const noexcept { return timeZone_; }
    /// `setTimeZone:`
    void setTimeZone(const NSTimeZone& timeZone) noexcept { timeZone_ = timeZone; }

    /// `components:fromDate:`
    ///
    /// The fields of a date that `units` names; the others stay absent, the time zone always. Fractions of a second are
    /// left out, and belong to the second before them. All fields are absent for a date beyond the calendar.
    [[nodiscard]] NSDateComponents components(NSCalendarUnit units, const NSDate& fromDate) const;

    /// `dateFromComponents:`
    ///
    /// Fields that are absent count as those of 1 January of the year 1, 00:00:00. Values out of their range roll over:
    /// the 25th hour is 01:00 of the next day, month 13 January of the next year. When a day is given, then year, month
    /// and day decide; without one, weekday, its ordinal and the week of the year, where they are given, are heard as
    /// well. The components' time zone goes before the calendar's.
    ///
    /// @return absent when the date is beyond the calendar
    [[nodiscard]] std::optional<NSDate> dateFromComponents(const NSDateComponents& components) const;

    /// `dateByAddingComponents:toDate:options:`, without options
    ///
    /// Adds each field that is given as a length of time, the longest first. Years and months keep the day of the
    /// month, or take the last one of a month that is too short. Years, months, weeks and days keep the local time of
    /// day; hours, minutes and seconds pass by the clock of UTC. A week is seven days; a weekday counts as a day, its
    /// ordinal as a week; an era is not added. Negative values go back. Fractions of a second stay.
    ///
    /// @return absent when `toDate` or the result is beyond the calendar
    [[nodiscard]] std::optional<NSDate> dateByAddingComponents(const NSDateComponents& components,
                                                               const NSDate& toDate) const;

    /// `components:fromDate:toDate:options:`, without options
    ///
    /// How long it is from one date to the other, in whole units, the longest first: each field holds how often it can
    /// be added to what the longer ones reached without going past `toDate`. All are negative or 0 when `toDate` is the
    /// earlier one.
    ///
    /// @param units  year, month, week of the year, day, hour, minute, second; others are ignored
    /// @return all fields are absent when one of the dates is beyond the calendar
    [[nodiscard]] NSDateComponents components(NSCalendarUnit units, const NSDate& fromDate, const NSDate& toDate) const;

    // The public part ends here.
private:
    NSLocale locale_;
    NSTimeZone timeZone_;
};

}  // namespace ZORPlatform
