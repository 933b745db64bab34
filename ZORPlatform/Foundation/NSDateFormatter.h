// SPDX-License-Identifier: Apache-2.0
#pragma once

// Dates as people of a locale write them, by a pattern of field symbols: "d" the day, "M" the month, "y" the year and
// so on, repeated for their width (Unicode Technical Standard 35, part 4, Date Format Patterns).
//
//     NSDateFormatter formatter;
//     formatter.setDateFormat(u"EEEE dd MMMM yyyy");
//     formatter.setLocale(NSLocale(u"nl_BE"));
//     formatter.stringFromDate(date);                        // u"maandag 05 maart 2018"
//     formatter.dateFromString(u"maandag 05 maart 2018");    // midnight of that day

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSDate.h>
#include <ZORPlatform/Foundation/NSLocale.h>
#include <ZORPlatform/Foundation/NSTimeZone.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ZORPlatform {

struct DatePattern;

/// A date formatter, as a value: a copy is independent. What was not set follows the user's settings at each call: the
/// locale and the time zone that `HostEnvironment` names. The calendar is always the Gregorian one.
///
/// Asking one formatter from several threads at once is safe while none changes it. Formatters are cheap to make, to
/// copy and to ask again: patterns and the customs of locales are read once a thread.
class ZOR_EXPORT NSDateFormatter {
public:
    /// No pattern, the user's locale and time zone.
    NSDateFormatter();
    // No moves: a moved-from formatter would have no pattern.
    NSDateFormatter(const NSDateFormatter&) = default;
    NSDateFormatter& operator=(const NSDateFormatter&) = default;
    ~NSDateFormatter() = default;

    /// `dateFormat`: the pattern as it was set, empty before.
    [[nodiscard]] const std::u16string& dateFormat() const noexcept;
    /// `setDateFormat:`
    ///
    /// @param pattern  letters are fields; text between single quotes stands for itself, as does all that is no letter;
    ///                 two quotes are one. Absent counts as empty. One of more than 1024 units, which is no pattern of
    ///                 any use, changes nothing
    void setDateFormat(std::u16string_view pattern);

    /// `locale`: the one set, else the user's.
    [[nodiscard]] NSLocale locale() const;
    /// `setLocale:`
    void setLocale(const NSLocale& locale) noexcept { locale_ = locale; }

    /// `timeZone`: the one set, else the user's.
    [[nodiscard]] NSTimeZone timeZone() const;
    /// `setTimeZone:`
    void setTimeZone(const NSTimeZone& timeZone) noexcept { timeZone_ = timeZone; }

    /// `dateFormatFromTemplate:options:locale:`, without options
    ///
    /// The locale's own arrangement of the fields that a template asks for: their order, the separators, and the forms
    /// that it has.
    ///
    /// @param dateTemplate  field symbols in any order, "EEEE dd MM yyyy"; all that is no letter is ignored. "j" stands
    ///                      for the hour as the locale counts it
    /// @return a pattern; absent when the template asks for no field, or has more than 1024 units
    [[nodiscard]] static std::optional<std::u16string> dateFormatFromTemplate(std::u16string_view dateTemplate,
                                                                              const NSLocale& locale);

    /// `stringFromDate:`
    ///
    /// Fractions of a second are cut to whole milliseconds, not rounded; a date less than a microsecond short of a
    /// millisecond counts as that one, because a double cannot hold most of them.
    ///
    /// @return empty without a pattern, for one with a letter that is no field, and for a date beyond the calendar
    [[nodiscard]] std::u16string stringFromDate(const NSDate& date) const;

    /// `dateFromString:`
    ///
    /// Reads a date that is written by the pattern, not leniently: the whole text must match, fields must be in their
    /// range, and a day of two letters or a year of four has at least as many digits. Fields that the pattern lacks
    /// count as those of 1 January 2000, 00:00:00. Names may be in any case and of any width, white space may precede a
    /// field. Of a time that the clocks show twice, the first is meant; one that they skip is no time, and so is a day
    /// whose midnight they skip, where the pattern has no time of day.
    ///
    /// @return absent when the text does not match, for a text of more than 1024 units, and without a pattern
    [[nodiscard]] std::optional<NSDate> dateFromString(std::u16string_view text) const;

    // The public part ends here.
private:
    std::shared_ptr<const DatePattern> pattern_;  // Never null.
    std::optional<NSLocale> locale_;
    std::optional<NSTimeZone> timeZone_;
};

}  // namespace ZORPlatform
