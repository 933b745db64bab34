// SPDX-License-Identifier: Apache-2.0
#include "Groups.h"
#include "Operations.h"

#include <ZORFoundation/DateAdditions.h>
#include <ZORFoundation/DateExtension.h>
#include <ZORFoundation/DateFormatterExtension.h>
#include <ZORFoundation/ZORDateFormatters.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace conformance {

using namespace ZORFoundation;
using ZORPlatform::HostEnvironment;
using ZORPlatform::utf16;

namespace {

NSDate date(const Value& value) { return NSDate::since1970(value.unixSeconds()); }

Value result(const NSDate& date) { return Date{date.timeIntervalSince1970()}; }
Value result(const std::optional<NSDate>& date) { return date ? result(*date) : Value(std::nullopt); }
template <class Other>
Value result(const Other& other) {
    return Value(other);
}

void enter(const Environment& environment) {
    HostEnvironment::setTimeZoneIdentifier(utf16(environment.timeZone));
    HostEnvironment::setLocaleIdentifier(utf16(environment.locale));
    HostEnvironment::setNow(environment.now ? std::optional(NSDate::since1970(*environment.now)) : std::nullopt);
}

/// Registers an operation that is asked in the world that a case describes.
template <class Call>
void add(Operations& operations, const std::string& name, Call call) {
    operations.add(name, [call](const Arguments& a) {
        enter(a.environment());
        return result(call(a));
    });
}

using Factory = std::function<NSDateFormatter(const Arguments&)>;

/// What a formatter is asked, behind the arguments of its factory.
void addFactory(Operations& operations, const std::string& name, std::size_t arguments, const Factory& factory) {
    add(operations, name + "/dateFormat", [=](const Arguments& a) { return factory(a).dateFormat(); });
    add(operations,
        name + "/stringFromDate:", [=](const Arguments& a) { return factory(a).stringFromDate(date(a[arguments])); });
    add(operations,
        name + "/dateFromString:", [=](const Arguments& a) { return factory(a).dateFromString(a[arguments].text()); });
}

void registerFormatters(Operations& operations) {
    using namespace ZORDateFormatters;
    const auto addWithLocale = [&](const char* name, NSDateFormatter (*factory)(const NSLocale&)) {
        addFactory(operations, name, 1, [=](const Arguments& a) { return factory(NSLocale(a[0].text())); });
    };
    addWithLocale("ZORDateFormatters.zor_ddMMyyyyDateFormatterWithLocale:", zor_ddMMyyyyDateFormatterWithLocale);
    addWithLocale("ZORDateFormatters.zor_ddMMyyyyConstrainedDateFormatterWithLocale:",
                  zor_ddMMyyyyConstrainedDateFormatterWithLocale);
    addWithLocale("ZORDateFormatters.zor_dateWithTimeWithLocale:", zor_dateWithTimeWithLocale);
    addWithLocale("ZORDateFormatters.zor_fullDateFormatterWithLocale:", zor_fullDateFormatterWithLocale);
    addFactory(
        operations, "ZORDateFormatters.zor_fullDateFormatterWithLocale:includesDayOfWeek:", 2,
        [](const Arguments& a) { return zor_fullDateFormatterWithLocale(NSLocale(a[0].text()), a[1].boolean()); });
    addFactory(operations, "ZORDateFormatters.zor_fullDateFormatterWithLocale:includesDayOfWeek:excludeYear:", 3,
               [](const Arguments& a) {
                   return zor_fullDateFormatterWithLocale(NSLocale(a[0].text()), a[1].boolean(), a[2].boolean());
               });
    addFactory(operations, "DateFormatter.zor_iso8601DateFormatter()", 0,
               [](const Arguments&) { return DateFormatterExtension::zor_iso8601DateFormatter(); });
    addFactory(operations, "DateFormatter.zor_iso8601DateFormatterWithMilliseconds()", 0,
               [](const Arguments&) { return DateFormatterExtension::zor_iso8601DateFormatterWithMilliseconds(); });
}

void registerAdditions(Operations& operations) {
    using namespace ZORAdditions;
    add(operations, "ZORAdditions.zor_tomorrow", [](const Arguments&) { return zor_tomorrow(); });
    add(operations,
        "ZORAdditions.zor_dateWithOffset:", [](const Arguments& a) { return zor_dateWithOffset(a[0].integer()); });
    add(operations, "ZORAdditions.zor_dateOnly", [](const Arguments& a) { return zor_dateOnly(date(a[0])); });
    add(operations, "ZORAdditions.zor_yearsFromDate:toDate:", [](const Arguments& a) {
        return zor_yearsFromDate(date(a[0]), date(a[1]));
    });
    add(operations, "ZORAdditions.zor_year", [](const Arguments& a) { return zor_year(date(a[0])); });
    add(operations, "ZORAdditions.zor_month", [](const Arguments& a) { return zor_month(date(a[0])); });
    add(operations, "ZORAdditions.zor_day", [](const Arguments& a) { return zor_day(date(a[0])); });
    add(operations, "ZORAdditions.zor_dateFromDay:month:year:", [](const Arguments& a) {
        return zor_dateFromDay(a[0].integer(), a[1].integer(), a[2].integer());
    });
}

void registerDateExtension(Operations& operations) {
    using namespace DateExtension;
    const auto addQuestion = [&](const char* name, bool (*question)(const NSDate&)) {
        add(operations, name, [=](const Arguments& a) { return question(date(a[0])); });
    };
    addQuestion("Date.isToday()", isToday);
    addQuestion("Date.isYesterday()", isYesterday);
    addQuestion("Date.isDayBeforeYesterday()", isDayBeforeYesterday);
    addQuestion("Date.isTomorrow()", isTomorrow);
    addQuestion("Date.isDayAfterTomorrow()", isDayAfterTomorrow);
    addQuestion("Date.isAfterTomorrow()", isAfterTomorrow);
    addQuestion("Date.isThisYear()", isThisYear);

    const auto addComparison = [&](const char* name, bool (*comparison)(const NSDate&, const NSDate&)) {
        add(operations, name, [=](const Arguments& a) { return comparison(date(a[0]), date(a[1])); });
    };
    addComparison("Date.isEqualToDateIgnoringTime(_:)", isEqualToDateIgnoringTime);
    addComparison("Date.isEqualToDate(_:)", isEqualToDate);
    addComparison("Date.isLaterThanDate(_:)", isLaterThanDate);
    addComparison("Date.isLaterOrEqualToDate(_:)", isLaterOrEqualToDate);
    addComparison("Date.isEarlierThanDate(_:)", isEarlierThanDate);
    addComparison("Date.isSameYearAsDate(_:)", isSameYearAsDate);

    const auto addMove = [&](const char* name, NSDate (*move)(const NSDate&, std::int64_t)) {
        add(operations, name, [=](const Arguments& a) { return move(date(a[0]), a[1].integer()); });
    };
    addMove("Date.dateByAddingDays(_:)", dateByAddingDays);
    addMove("NSDate.dateByAddingDays(_:)", dateByAddingDays);
    addMove("Date.dateByAddingMonths(_:)", dateByAddingMonths);
    addMove("Date.dateByAddingYears(_:)", dateByAddingYears);
    addMove("Date.dateBySubtractingDays(_:)", dateBySubtractingDays);

    const auto addDisplay = [&](const char* name, std::u16string (*display)(const NSDate&, std::u16string_view)) {
        add(operations, name, [=](const Arguments& a) { return display(date(a[0]), a[1].text()); });
    };
    addDisplay("Date.shortFormatWithLocale(locale:)", shortFormatWithLocale);
    addDisplay("Date.mediumFormatWithLocale(locale:)", mediumFormatWithLocale);
    addDisplay("Date.longFormatWithLocale(locale:)", longFormatWithLocale);
    addDisplay("Date.longFormatNoDayFullMonthWithLocale(locale:)", longFormatNoDayFullMonthWithLocale);

    add(operations, "Date.year()", [](const Arguments& a) { return year(date(a[0])); });
    add(operations, "Date.dateAt(hours:minutes:)",
        [](const Arguments& a) { return dateAt(date(a[0]), a[1].integer(), a[2].integer()); });
    add(operations, "Date.setTime(time:)", [](const Arguments& a) { return setTime(date(a[0]), a[1].text()); });
    add(operations, "Date.formatWithTemplate(template:locale:)",
        [](const Arguments& a) { return formatWithTemplate(date(a[0]), a[1].text(), a[2].text()); });
}

}  // namespace

void registerDateOperations(Operations& operations) {
    registerFormatters(operations);
    registerAdditions(operations);
    registerDateExtension(operations);
}

}  // namespace conformance
