// SPDX-License-Identifier: Apache-2.0
//
// Plain arithmetic on whole seconds and days. ICU is asked for what is data, a locale's weeks, and for what is a rule
// of its own: which of several fields decide about a day when the day itself is not among them.
#include <ZORPlatform/Foundation/NSCalendar.h>

#include <ZORPlatform/Foundation/CalendarMomentInternal.h>
#include <ZORPlatform/Foundation/GregorianDayInternal.h>
#include <ZORPlatform/Foundation/IcuTextInternal.h>
#include <ZORPlatform/Foundation/RecentValuesInternal.h>
#include <ZORPlatform/Foundation/TimeZoneRulesInternal.h>

#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>

namespace ZORPlatform {
namespace {

constexpr std::int64_t kDaysPerWeek = 7;
constexpr std::int64_t kSecondsPerHour = 3600;
constexpr std::int64_t kSecondsPerMinute = 60;
constexpr std::int64_t kMonthsPerYear = 12;

/// The first year with a Gregorian day, and the first such day.
constexpr std::int64_t kGregorianYear = 1582;
constexpr std::int64_t kGregorianDay = daysSince1970(kGregorianYear, 10, 15);

// ---- Days ----------------------------------------------------------------------------------------------------------

// Days of the Julian calendar, counted like those of the Gregorian one: from March, in cycles of four years.
constexpr std::int64_t kJulianOrigin = 719470;
constexpr std::int64_t kDaysOfJulianCycle = 1461;

constexpr std::int64_t julianDaysSince1970(std::int64_t year, std::int64_t month, std::int64_t day) noexcept {
    const std::int64_t months = year * kMonthsPerYear + (month - 3);
    const std::int64_t marchYear = flooredQuotient(months, kMonthsPerYear);
    const std::int64_t monthFromMarch = months - marchYear * kMonthsPerYear;
    return marchYear * 365 + flooredQuotient(marchYear, 4) + (153 * monthFromMarch + 2) / 5 + (day - 1) - kJulianOrigin;
}

constexpr GregorianDay julianDay(std::int64_t daysSince1970) noexcept {
    const std::int64_t days = daysSince1970 + kJulianOrigin;
    const std::int64_t cycle = flooredQuotient(days, kDaysOfJulianCycle);
    const std::int64_t dayOfCycle = days - cycle * kDaysOfJulianCycle;
    const std::int64_t yearOfCycle = (dayOfCycle - dayOfCycle / (kDaysOfJulianCycle - 1)) / 365;
    const std::int64_t dayOfYear = dayOfCycle - 365 * yearOfCycle;
    const std::int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
    const auto day = static_cast<unsigned>(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1);
    const auto month = static_cast<unsigned>(monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9);
    return {yearOfCycle + cycle * 4 + (month <= 2 ? 1 : 0), month, day};
}

static_assert(julianDaysSince1970(1582, 10, 4) == kGregorianDay - 1);
static_assert(julianDay(kGregorianDay - 1).day == 4 && julianDay(julianDaysSince1970(4, 2, 29)).day == 29);

/// The year 0 is the one before Christ, −1 the one before it.
constexpr GregorianDay dayOfCalendar(std::int64_t days) noexcept {
    return days >= kGregorianDay ? gregorianDay(days) : julianDay(days);
}

/// The day by the calendar that its year is in. Where that names a day of the other one, the other one counts.
constexpr std::int64_t calendarDays(std::int64_t year, std::int64_t month, std::int64_t day) noexcept {
    const std::int64_t yearOfMonth = year + flooredQuotient(month - 1, kMonthsPerYear);
    const bool isGregorian = yearOfMonth >= kGregorianYear;
    const std::int64_t days = isGregorian ? daysSince1970(year, month, day) : julianDaysSince1970(year, month, day);
    if (isGregorian == (days >= kGregorianDay)) return days;
    return isGregorian ? julianDaysSince1970(year, month, day) : daysSince1970(year, month, day);
}

constexpr bool isLeapYear(std::int64_t year) noexcept {
    return year % 4 == 0 && (year < kGregorianYear || year % 100 != 0 || year % 400 == 0);
}

constexpr std::int64_t lengthOfYear(std::int64_t year) noexcept { return isLeapYear(year) ? 366 : 365; }

constexpr std::int64_t lengthOfMonth(std::int64_t year, unsigned month) noexcept {
    constexpr std::array<std::int8_t, 12> kLengths{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : kLengths[month - 1];
}

/// 0 for Sunday.
constexpr std::int64_t weekdayOfDay(std::int64_t days) noexcept {
    constexpr std::int64_t kThursday = 4;  // 1 January 1970.
    const std::int64_t weekday = (days + kThursday) % kDaysPerWeek;
    return weekday >= 0 ? weekday : weekday + kDaysPerWeek;
}

// ---- Weeks ---------------------------------------------------------------------------------------------------------

struct Weeks {
    std::int64_t firstWeekday = 0;  ///< 0 for Sunday.
    std::int64_t minimalDays = 1;   ///< Of a year in its first week.
};

std::unique_ptr<icu::GregorianCalendar> icuCalendar(const NSLocale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    auto calendar =
        std::make_unique<icu::GregorianCalendar>(icu::TimeZone::getGMT()->clone(), icuLocale(locale), status);
    return U_SUCCESS(status) ? std::move(calendar) : nullptr;
}

Weeks weeks(const NSLocale& locale) {
    thread_local RecentValues<NSLocale, Weeks> recent;
    return recent.find(locale, [&] {
        const auto calendar = icuCalendar(locale);
        if (calendar == nullptr) return Weeks();
        UErrorCode status = U_ZERO_ERROR;
        return Weeks{static_cast<std::int64_t>(calendar->getFirstDayOfWeek(status)) - UCAL_SUNDAY,
                     calendar->getMinimalDaysInFirstWeek()};
    });
}

/// The number of the week of its year that a day is in. The last days of a year may belong to week 1 of the next one,
/// the first ones to the last week of the one before.
std::int64_t weekOfYear(std::int64_t days, std::int64_t year, const Weeks& weeks) {
    const std::int64_t dayOfYear = days - calendarDays(year, 1, 1) + 1;
    const std::int64_t dayOfWeek = (weekdayOfDay(days) - weeks.firstWeekday + kDaysPerWeek) % kDaysPerWeek;
    const auto week = [&](std::int64_t ordinal) {
        // Days of the year that lie in a first week which began in the year before.
        const std::int64_t firstDay = ((dayOfWeek - (ordinal - 1)) % kDaysPerWeek + kDaysPerWeek) % kDaysPerWeek;
        return (ordinal - 1 + firstDay) / kDaysPerWeek + (kDaysPerWeek - firstDay >= weeks.minimalDays ? 1 : 0);
    };
    const std::int64_t number = week(dayOfYear);
    if (number == 0) return week(dayOfYear + lengthOfYear(year - 1));
    const std::int64_t daysOfNextYear = kDaysPerWeek - dayOfWeek - 1 - (lengthOfYear(year) - dayOfYear);
    return daysOfNextYear >= weeks.minimalDays ? 1 : number;
}

// ---- Local time ----------------------------------------------------------------------------------------------------

struct LocalTime {
    std::int64_t days;
    std::int64_t secondsOfDay;
};

LocalTime localTime(std::int64_t instant, const TimeZoneRules& zone) {
    const std::int64_t local = instant + zone.offsetAt(instant);
    const std::int64_t days = flooredQuotient(local, kSecondsPerDay);
    return {days, local - days * kSecondsPerDay};
}

std::optional<std::int64_t> instantOfLocal(std::int64_t days, std::int64_t secondsOfDay, const TimeZoneRules& zone) {
    // Far beyond the calendar, and far below what would overflow.
    constexpr std::int64_t kMaximum = std::int64_t{1} << 44;
    if (days < -kMaximum || days > kMaximum) return std::nullopt;
    const std::int64_t local = days * kSecondsPerDay + secondsOfDay;
    const std::int64_t instant = local - zone.offsetAtLocal(local);
    return isInCalendar(instant) ? std::optional(instant) : std::nullopt;
}

// ---- Building ------------------------------------------------------------------------------------------------------

/// Whether every field is so small that no sum of them overflows. One that is not is far beyond the calendar.
bool areSmall(const NSDateComponents& fields) {
    constexpr std::int64_t kMaximum = 1'000'000'000'000'000;
    for (const auto& field : {fields.era, fields.year, fields.month, fields.day, fields.hour, fields.minute,
                              fields.second, fields.weekday, fields.weekdayOrdinal, fields.weekOfYear}) {
        if (field && (*field < -kMaximum || *field > kMaximum)) return false;
    }
    return true;
}

bool isDayDecidedByWeeks(const NSDateComponents& fields) {
    return !fields.day && (fields.weekOfYear || fields.weekday || fields.weekdayOrdinal);
}

/// By ICU's rules: of the fields, those that were set last decide.
std::optional<std::int64_t> daysByWeeks(const NSDateComponents& fields, const NSLocale& locale) {
    const auto calendar = icuCalendar(locale);
    if (calendar == nullptr) return std::nullopt;
    calendar->clear();
    calendar->set(1, UCAL_JANUARY, 1);
    const std::array<std::pair<UCalendarDateFields, std::optional<std::int64_t>>, 6> inOrder{
        {{UCAL_ERA, fields.era},
         {UCAL_YEAR, fields.year},
         {UCAL_WEEK_OF_YEAR, fields.weekOfYear},
         {UCAL_DAY_OF_WEEK, fields.weekday},
         {UCAL_DAY_OF_WEEK_IN_MONTH, fields.weekdayOrdinal},
         {UCAL_MONTH, fields.month ? std::optional(*fields.month - 1) : std::nullopt}}};
    for (const auto& [field, value] : inOrder) {
        // ICU counts in 32 bits and multiplies by the days of a month.
        constexpr std::int64_t kMaximum = 10'000'000;
        if (!value) continue;
        if (*value < -kMaximum || *value > kMaximum) return std::nullopt;
        calendar->set(field, static_cast<std::int32_t>(*value));
    }
    UErrorCode status = U_ZERO_ERROR;
    const UDate time = calendar->getTime(status);
    constexpr double kMillisecondsPerDay = 86400000;
    return U_SUCCESS(status) ? std::optional(static_cast<std::int64_t>(std::floor(time / kMillisecondsPerDay)))
                             : std::nullopt;
}

std::optional<std::int64_t> daysOf(const NSDateComponents& fields, const NSLocale& locale) {
    if (isDayDecidedByWeeks(fields)) return daysByWeeks(fields, locale);
    const std::int64_t yearOfEra = fields.year.value_or(1);
    const std::int64_t year = fields.era && *fields.era <= 0 ? 1 - yearOfEra : yearOfEra;
    return calendarDays(year, fields.month.value_or(1), fields.day.value_or(1));
}

// ---- Adding --------------------------------------------------------------------------------------------------------

/// Adding on the local clock and in UTC, one kind of length after the other.
class Addition {
public:
    Addition(std::int64_t instant, const TimeZoneRules& zone) : instant_(instant), zone_(zone) {}

    [[nodiscard]] std::optional<std::int64_t> result() const {
        return isReachable_ && isInCalendar(instant_) ? std::optional(instant_) : std::nullopt;
    }

    /// Twelve of them for a year.
    Addition& months(std::int64_t count, std::int64_t perUnit = 1) {
        // So many months are beyond the calendar from everywhere in it.
        constexpr std::int64_t kMaximum = 200'000'000;
        if (count == 0 || !reaches(count, kMaximum)) return *this;
        const LocalTime local = localTime(instant_, zone_);
        const GregorianDay start = dayOfCalendar(local.days);
        const std::int64_t months = start.month - 1 + count * perUnit;
        const std::int64_t year = start.year + flooredQuotient(months, kMonthsPerYear);
        const auto month = static_cast<unsigned>(months - flooredQuotient(months, kMonthsPerYear) * kMonthsPerYear) + 1;
        const std::int64_t day = std::min<std::int64_t>(start.day, lengthOfMonth(year, month));
        const auto moved = instantOfLocal(calendarDays(year, month, day), local.secondsOfDay, zone_);
        if (moved) {
            instant_ = *moved;
        } else {
            isReachable_ = false;
        }
        return *this;
    }

    Addition& days(std::int64_t count, std::int64_t perUnit = 1) {
        constexpr std::int64_t kMaximum = 5'000'000'000;
        if (count == 0 || !reaches(count, kMaximum)) return *this;
        const std::int64_t moved = instant_ + count * perUnit * kSecondsPerDay;
        if (!isInCalendar(moved)) {
            isReachable_ = false;
            return *this;
        }
        const std::int64_t offset = zone_.offsetAt(instant_);
        // A zone that crossed the date line has lost or doubled a day: that is no reason to leave the day.
        const std::int64_t correction = (offset - zone_.offsetAt(moved)) % kSecondsPerDay;
        instant_ = moved + correction;
        // Where the clocks skip the time of day, it is moved forward.
        const bool isSkipped = (correction + zone_.offsetAt(instant_) - offset) % kSecondsPerDay != 0;
        if (isSkipped && correction < 0) instant_ = moved;
        return *this;
    }

    Addition& seconds(std::int64_t count, std::int64_t perUnit = 1) {
        constexpr std::int64_t kMaximum = 400'000'000'000'000;
        if (count == 0 || !reaches(count, kMaximum)) return *this;
        instant_ += count * perUnit;
        isReachable_ = isReachable_ && isInCalendar(instant_);
        return *this;
    }

private:
    bool reaches(std::int64_t count, std::int64_t maximum) {
        isReachable_ = isReachable_ && count >= -maximum && count <= maximum;
        return isReachable_;
    }

    std::int64_t instant_;
    bool isReachable_ = true;
    const TimeZoneRules& zone_;
};

std::optional<std::int64_t> sum(const NSDateComponents& lengths, std::int64_t instant, const TimeZoneRules& zone) {
    return Addition(instant, zone)
        .months(lengths.year.value_or(0), kMonthsPerYear)
        .months(lengths.month.value_or(0))
        .days(lengths.weekOfYear.value_or(0), kDaysPerWeek)
        .days(lengths.day.value_or(0))
        .days(lengths.weekday.value_or(0))
        .days(lengths.weekdayOrdinal.value_or(0), kDaysPerWeek)
        .seconds(lengths.hour.value_or(0), kSecondsPerHour)
        .seconds(lengths.minute.value_or(0), kSecondsPerMinute)
        .seconds(lengths.second.value_or(0))
        .result();
}

}  // namespace

NSCalendar NSCalendar::currentCalendar() { return {NSLocale::currentLocale(), NSTimeZone::localTimeZone()}; }

NSDateComponents NSCalendar::components(NSCalendarUnit units, const NSDate& fromDate) const {
    NSDateComponents fields;
    const auto moment = calendarMoment(fromDate);
    if (!moment) return fields;
    const LocalTime local = localTime(moment->seconds, timeZone_.rules());
    const GregorianDay date = dayOfCalendar(local.days);
    const auto has = [&](NSCalendarUnit unit) { return contains(units, unit); };
    if (has(NSCalendarUnit::era)) fields.era = date.year > 0 ? 1 : 0;
    if (has(NSCalendarUnit::year)) fields.year = date.year > 0 ? date.year : 1 - date.year;
    if (has(NSCalendarUnit::month)) fields.month = date.month;
    if (has(NSCalendarUnit::day)) fields.day = date.day;
    if (has(NSCalendarUnit::hour)) fields.hour = local.secondsOfDay / kSecondsPerHour;
    if (has(NSCalendarUnit::minute)) fields.minute = local.secondsOfDay / kSecondsPerMinute % 60;
    if (has(NSCalendarUnit::second)) fields.second = local.secondsOfDay % 60;
    if (has(NSCalendarUnit::weekday)) fields.weekday = weekdayOfDay(local.days) + 1;
    if (has(NSCalendarUnit::weekdayOrdinal)) fields.weekdayOrdinal = (date.day - 1) / kDaysPerWeek + 1;
    if (has(NSCalendarUnit::weekOfYear)) fields.weekOfYear = weekOfYear(local.days, date.year, weeks(locale_));
    return fields;
}

std::optional<NSDate> NSCalendar::dateFromComponents(const NSDateComponents& components) const {
    if (!areSmall(components)) return std::nullopt;
    const auto days = daysOf(components, locale_);
    if (!days) return std::nullopt;
    const std::int64_t seconds = components.hour.value_or(0) * kSecondsPerHour +
                                 components.minute.value_or(0) * kSecondsPerMinute + components.second.value_or(0);
    const std::int64_t moreDays = flooredQuotient(seconds, kSecondsPerDay);
    const NSTimeZone& zone = components.timeZone ? *components.timeZone : timeZone_;
    const auto instant = instantOfLocal(*days + moreDays, seconds - moreDays * kSecondsPerDay, zone.rules());
    if (!instant) return std::nullopt;
    return calendarDate({*instant, 0});
}

std::optional<NSDate> NSCalendar::dateByAddingComponents(const NSDateComponents& components,
                                                         const NSDate& toDate) const {
    const auto moment = calendarMoment(toDate);
    if (!moment) return std::nullopt;
    const auto instant = sum(components, moment->seconds, timeZone_.rules());
    if (!instant) return std::nullopt;
    return calendarDate({*instant, moment->fraction});
}

NSDateComponents NSCalendar::components(NSCalendarUnit units, const NSDate& fromDate, const NSDate& toDate) const {
    const auto start = calendarMoment(fromDate);
    const auto end = calendarMoment(toDate);
    NSDateComponents lengths;
    if (!start || !end) return lengths;

    const TimeZoneRules& zone = timeZone_.rules();
    const std::int64_t direction = toDate < fromDate ? -1 : 1;
    std::int64_t reached = start->seconds;
    // The fraction stays with what is reached, so it shortens the way or, going back, lengthens it.
    const bool isEndCut = direction > 0 ? start->fraction > end->fraction : start->fraction < end->fraction;
    const std::int64_t last = end->seconds - (isEndCut ? direction : 0);

    struct Length {
        NSCalendarUnit unit;
        std::optional<std::int64_t> NSDateComponents::*field;
        std::int64_t averageSeconds;
    };
    constexpr std::int64_t kAverageYear = 31556952;
    for (const Length& length :
         {Length{NSCalendarUnit::year, &NSDateComponents::year, kAverageYear},
          Length{NSCalendarUnit::month, &NSDateComponents::month, kAverageYear / kMonthsPerYear},
          Length{NSCalendarUnit::weekOfYear, &NSDateComponents::weekOfYear, kDaysPerWeek * kSecondsPerDay},
          Length{NSCalendarUnit::day, &NSDateComponents::day, kSecondsPerDay},
          Length{NSCalendarUnit::hour, &NSDateComponents::hour, kSecondsPerHour},
          Length{NSCalendarUnit::minute, &NSDateComponents::minute, kSecondsPerMinute},
          Length{NSCalendarUnit::second, &NSDateComponents::second, 1}}) {
        if (!contains(units, length.unit)) continue;
        // Absent where that many go past the end.
        const auto within = [&](std::int64_t count) {
            NSDateComponents one;
            one.*length.field = count;
            const auto instant = sum(one, reached, zone);
            return instant && (direction > 0 ? *instant <= last : *instant >= last) ? instant : std::nullopt;
        };
        std::int64_t count = (last - reached) / length.averageSeconds;
        while (count != 0 && !within(count)) count -= direction;
        while (within(count + direction)) count += direction;
        lengths.*length.field = count;
        if (const auto instant = within(count)) reached = *instant;
    }
    return lengths;
}

}  // namespace ZORPlatform
