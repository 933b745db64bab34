// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSCalendar.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/TimeZoneRulesInternal.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>

#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace ZORPlatform {

/// For the messages of failing tests.
static void PrintTo(const NSDateComponents& fields, std::ostream* out) {
    for (const auto& field : {fields.era, fields.year, fields.month, fields.day, fields.hour, fields.minute,
                              fields.second, fields.weekday, fields.weekdayOrdinal, fields.weekOfYear}) {
        *out << (field ? std::to_string(*field) : "-") << ' ';
    }
}

namespace {

using namespace std::chrono;
using Unit = NSCalendarUnit;

constexpr Unit kAllUnits = Unit::era | Unit::year | Unit::month | Unit::day | Unit::hour | Unit::minute | Unit::second |
                           Unit::weekday | Unit::weekdayOrdinal | Unit::weekOfYear;
constexpr Unit kDay = Unit::year | Unit::month | Unit::day;

NSCalendar calendar(std::u16string_view zone = u"Europe/Brussels", std::u16string_view locale = u"nl_BE") {
    return {NSLocale(locale), NSTimeZone::timeZoneWithName(zone).value()};
}

NSDate utc(int inYear, unsigned inMonth, unsigned inDay, seconds time = 0s) {
    return NSDate(sys_seconds(sys_days(year(inYear) / month(inMonth) / day(inDay)) + time));
}

NSDate local(const NSCalendar& calendar, int inYear, unsigned inMonth, unsigned inDay, int hour = 0, int minute = 0) {
    return calendar.dateFromComponents({.year = inYear, .month = inMonth, .day = inDay, .hour = hour, .minute = minute})
        .value();
}

TEST(NSCalendar, ComponentsAreThoseAskedFor) {
    const NSDateComponents fields = calendar().components(kAllUnits, utc(2018, 3, 5, 13h + 30min + 45s));
    EXPECT_EQ(fields, (NSDateComponents{.era = 1,
                                        .year = 2018,
                                        .month = 3,
                                        .day = 5,
                                        .hour = 14,
                                        .minute = 30,
                                        .second = 45,
                                        .weekday = 2,
                                        .weekdayOrdinal = 1,
                                        .weekOfYear = 10}));
    EXPECT_EQ(calendar().components(Unit::month, utc(2018, 3, 5)), NSDateComponents{.month = 3});
    EXPECT_EQ(calendar().components(static_cast<Unit>(0), utc(2018, 3, 5)), NSDateComponents{});
    EXPECT_EQ(calendar().components(static_cast<Unit>(0x26FC), utc(2018, 3, 5)).era, std::nullopt);
}

TEST(NSCalendar, FieldsAreThoseOfTheLocalDay) {
    const NSDate lastSecond = utc(2017, 12, 31, 23h + 59min + 59s);
    EXPECT_EQ(calendar().components(kDay, lastSecond), (NSDateComponents{.year = 2018, .month = 1, .day = 1}));
    EXPECT_EQ(calendar(u"America/New_York").components(kDay, lastSecond),
              (NSDateComponents{.year = 2017, .month = 12, .day = 31}));
}

TEST(NSCalendar, FractionsBelongToTheSecondBeforeThem) {
    const NSCalendar utcCalendar = calendar(u"UTC");
    EXPECT_EQ(utcCalendar.components(Unit::second, NSDate::since1970(-0.25)).second, 59);
    EXPECT_EQ(utcCalendar.components(Unit::second, NSDate::since1970(59.999)).second, 59);
}

TEST(NSCalendar, WeeksFollowTheLocaleAndWeekdaysDoNot) {
    struct Row {
        NSDate date;
        int european, american;
    };
    for (const Row& row : {Row{utc(2018, 1, 1), 1, 1}, Row{utc(2018, 1, 7), 1, 2}, Row{utc(2017, 1, 1), 52, 1},
                           Row{utc(2018, 12, 31), 1, 1}, Row{utc(2020, 12, 31), 53, 1}, Row{utc(2021, 1, 3), 53, 2}}) {
        for (const std::u16string_view locale : {u"nl_BE", u"fr_BE", u"de_BE", u"en_GB"}) {
            EXPECT_EQ(calendar(u"UTC", locale).components(Unit::weekOfYear, row.date).weekOfYear, row.european);
        }
        EXPECT_EQ(calendar(u"UTC", u"en_US").components(Unit::weekOfYear, row.date).weekOfYear, row.american);
    }
    EXPECT_EQ(calendar(u"UTC", u"en_US").components(Unit::weekday, utc(2018, 3, 4)).weekday, 1);
    EXPECT_EQ(calendar(u"UTC", u"nl_BE").components(Unit::weekday, utc(2018, 3, 10)).weekday, 7);
}

TEST(NSCalendar, WeekdayOrdinalCountsTheSameWeekdayInTheMonth) {
    for (const auto& [dayOfMonth, ordinal] : {std::pair{1U, 1}, {7U, 1}, {8U, 2}, {28U, 4}, {29U, 5}, {31U, 5}}) {
        EXPECT_EQ(calendar(u"UTC").components(Unit::weekdayOrdinal, utc(2018, 3, dayOfMonth)).weekdayOrdinal, ordinal);
    }
}

TEST(NSCalendar, JulianDaysComeBefore15October1582) {
    const NSCalendar gmt = calendar(u"UTC");
    const NSDate first = local(gmt, 1582, 10, 15);
    EXPECT_EQ(first, utc(1582, 10, 15));
    const NSDate before = gmt.dateByAddingComponents({.day = -1}, first).value();
    EXPECT_EQ(gmt.components(kDay, before), (NSDateComponents{.year = 1582, .month = 10, .day = 4}));
    EXPECT_EQ(gmt.dateFromComponents({.year = 1582, .month = 10, .day = 4}), before);
    EXPECT_EQ(local(gmt, 1500, 2, 29), local(gmt, 1500, 3, 1 - 1));
    // A day that was left out is told by the old calendar.
    EXPECT_EQ(local(gmt, 1582, 10, 10), utc(1582, 10, 20));
}

TEST(NSCalendar, YearBeforeTheFirstIsTheFirstBeforeChrist) {
    const NSCalendar gmt = calendar(u"UTC");
    const NSDate last = gmt.dateByAddingComponents({.day = -1}, local(gmt, 1, 1, 1)).value();
    EXPECT_EQ(gmt.components(Unit::era | kDay, last), (NSDateComponents{.era = 0, .year = 1, .month = 12, .day = 31}));
    EXPECT_EQ(gmt.dateFromComponents({.era = 0, .year = 1, .month = 12, .day = 31}), last);
    EXPECT_EQ(gmt.dateFromComponents({.year = 0, .month = 12, .day = 31}), last);
}

TEST(NSCalendar, AbsentFieldsAreThoseOfTheFirstDayOfAll) {
    const NSCalendar gmt = calendar(u"UTC");
    EXPECT_EQ(gmt.dateFromComponents({}), gmt.dateFromComponents({.year = 1, .month = 1, .day = 1}));
    EXPECT_EQ(gmt.dateFromComponents({.year = 2018}), utc(2018, 1, 1));
    EXPECT_EQ(gmt.dateFromComponents({.year = 2018, .month = 3, .minute = 5}), utc(2018, 3, 1, 5min));
}

TEST(NSCalendar, ValuesOutOfTheirRangeRollOver) {
    const NSCalendar gmt = calendar(u"UTC");
    EXPECT_EQ(gmt.dateFromComponents({.year = 2018, .month = 3, .day = 5, .hour = 25}), utc(2018, 3, 6, 1h));
    EXPECT_EQ(gmt.dateFromComponents({.year = 2018, .month = 3, .day = 5, .minute = 75}), utc(2018, 3, 5, 75min));
    EXPECT_EQ(gmt.dateFromComponents({.year = 2018, .month = 13, .day = 1}), utc(2019, 1, 1));
    EXPECT_EQ(gmt.dateFromComponents({.year = 2018, .month = 0, .day = 31}), utc(2017, 12, 31));
    EXPECT_EQ(gmt.dateFromComponents({.year = 2018, .month = 3, .day = 0}), utc(2018, 2, 28));
    EXPECT_EQ(gmt.dateFromComponents({.year = 2018, .month = 3, .day = 1, .second = -1}),
              utc(2018, 2, 28, 23h + 59min + 59s));
}

TEST(NSCalendar, DayDecidesAgainstWeekAndWeekday) {
    const NSCalendar brussels = calendar();
    // The last day of 2018 is in week 1.
    const NSDate date = local(brussels, 2018, 12, 31, 14, 30);
    const NSDateComponents nine = brussels.components(static_cast<Unit>(0x26FC), date);
    EXPECT_EQ(nine.weekOfYear, 1);
    EXPECT_EQ(brussels.dateFromComponents(nine), date);
    NSDateComponents contradictory = nine;
    contradictory.weekday = 6;
    contradictory.weekOfYear = 30;
    EXPECT_EQ(brussels.dateFromComponents(contradictory), date);
}

TEST(NSCalendar, WithoutADayWeekAndWeekdayDecide) {
    const NSCalendar gmt = calendar(u"UTC");
    EXPECT_EQ(gmt.dateFromComponents({.year = 2018, .weekday = 2, .weekOfYear = 10}), utc(2018, 3, 5));
    EXPECT_EQ(gmt.dateFromComponents({.year = 2018, .month = 3, .hour = 9, .weekday = 2, .weekdayOrdinal = 2}),
              utc(2018, 3, 12, 9h));
}

TEST(NSCalendar, ZoneOfTheComponentsGoesFirst) {
    EXPECT_EQ(
        calendar(u"America/New_York")
            .dateFromComponents({.year = 2018, .month = 3, .day = 5, .timeZone = NSTimeZone::timeZoneWithName(u"UTC")}),
        utc(2018, 3, 5));
}

TEST(NSCalendar, SkippedTimeMovesForwardAndRepeatedTimeIsTheFirst) {
    EXPECT_EQ(local(calendar(), 2018, 3, 25, 2, 30), utc(2018, 3, 25, 1h + 30min));
    EXPECT_EQ(local(calendar(), 2018, 10, 28, 2, 30), utc(2018, 10, 28, 30min));
    EXPECT_EQ(local(calendar(u"America/Sao_Paulo"), 2018, 11, 4), utc(2018, 11, 4, 3h));
}

TEST(NSCalendar, AddingDaysKeepsTheTimeOfDay) {
    const NSCalendar brussels = calendar();
    const NSDate noon = local(brussels, 2018, 3, 24, 12);
    EXPECT_EQ(brussels.dateByAddingComponents({.day = 1}, noon), local(brussels, 2018, 3, 25, 12));
    EXPECT_EQ(brussels.dateByAddingComponents({.hour = 24}, noon), local(brussels, 2018, 3, 25, 13));
    const NSDate atNight = local(brussels, 2018, 3, 24, 2, 30);
    EXPECT_EQ(brussels.dateByAddingComponents({.day = 1}, atNight), local(brussels, 2018, 3, 25, 3, 30));
    EXPECT_EQ(brussels.dateByAddingComponents({.day = -1}, local(brussels, 2018, 3, 26, 2, 30)),
              local(brussels, 2018, 3, 25, 3, 30));
    // Apia went from the 29th to the 31st.
    const NSCalendar apia = calendar(u"Pacific/Apia");
    EXPECT_EQ(apia.dateByAddingComponents({.day = 1}, local(apia, 2011, 12, 29, 9)), local(apia, 2011, 12, 31, 9));
}

TEST(NSCalendar, AddingNothingChangesNothing) {
    // The second half past two of that night.
    const NSDate second = utc(2018, 10, 28, 1h + 30min);
    EXPECT_EQ(calendar().dateByAddingComponents({.year = 0, .month = 0, .day = 0, .hour = 0}, second), second);
    EXPECT_EQ(calendar().dateByAddingComponents({}, NSDate::since1970(0.125)), NSDate::since1970(0.125));
}

TEST(NSCalendar, AddingMonthsOrYearsTakesTheLastDayOfAShortMonth) {
    const NSCalendar gmt = calendar(u"UTC");
    struct Row {
        NSDate from;
        NSDateComponents lengths;
        NSDate to;
    };
    for (const Row& row :
         {Row{utc(2018, 1, 31), {.month = 1}, utc(2018, 2, 28)}, Row{utc(2020, 1, 31), {.month = 1}, utc(2020, 2, 29)},
          Row{utc(2018, 5, 31), {.month = 1}, utc(2018, 6, 30)}, Row{utc(2018, 3, 31), {.month = -1}, utc(2018, 2, 28)},
          Row{utc(2018, 1, 15), {.month = -13}, utc(2016, 12, 15)},
          Row{utc(2016, 2, 29), {.year = 1}, utc(2017, 2, 28)}, Row{utc(2016, 2, 29), {.year = 4}, utc(2020, 2, 29)},
          // One length after the other, the longest first.
          Row{utc(2016, 2, 29), {.year = 1, .month = 1}, utc(2017, 3, 28)},
          Row{utc(2018, 1, 31), {.month = 1, .day = 1}, utc(2018, 3, 1)},
          Row{utc(2018, 1, 1), {.weekOfYear = 2}, utc(2018, 1, 15)},
          Row{utc(2018, 1, 1), {.weekday = 1, .weekdayOrdinal = 1}, utc(2018, 1, 9)},
          Row{utc(2018, 1, 1), {.hour = -1, .minute = 30, .second = 5}, utc(2017, 12, 31, 23h + 30min + 5s)}}) {
        EXPECT_EQ(gmt.dateByAddingComponents(row.lengths, row.from), row.to) << row.to.timeIntervalSince1970();
    }
}

TEST(NSCalendar, AddingKeepsFractionsAndBuildingDropsThem) {
    const NSCalendar gmt = calendar(u"UTC");
    EXPECT_EQ(gmt.dateByAddingComponents({.day = 1}, NSDate::since1970(0.125)), NSDate::since1970(86400.125));
    EXPECT_EQ(gmt.dateByAddingComponents({.month = 1}, NSDate::since1970(-0.125)),
              NSDate::since1970(31 * 86400 - 0.125));
    EXPECT_EQ(gmt.dateFromComponents(gmt.components(kAllUnits, NSDate::since1970(5.5))), NSDate::since1970(5));
}

TEST(NSCalendar, YearsBetweenAreAsManyAsCanBeAdded) {
    const NSCalendar gmt = calendar(u"UTC");
    struct Row {
        NSDate from, to;
        int years;
    };
    for (const Row& row :
         {Row{utc(2000, 3, 1), utc(2018, 2, 28), 17}, Row{utc(2000, 3, 1), utc(2018, 3, 1), 18},
          Row{utc(2000, 2, 29), utc(2001, 2, 28), 1}, Row{utc(2000, 2, 29), utc(2004, 2, 29), 4},
          Row{utc(2018, 2, 28), utc(2000, 3, 1), -17}, Row{utc(2004, 2, 29), utc(2003, 3, 1), 0},
          Row{utc(2000, 3, 1, 12h), utc(2018, 3, 1, 12h - 1s), 17}, Row{utc(2018, 3, 5), utc(2018, 3, 5), 0}}) {
        EXPECT_EQ(gmt.components(Unit::year, row.from, row.to), NSDateComponents{.year = row.years});
    }
    EXPECT_EQ(gmt.components(Unit::year, NSDate::since1970(0.5), utc(1971, 1, 1)).year, 0);
    EXPECT_EQ(gmt.components(Unit::year, utc(1971, 1, 1), NSDate::since1970(0.5)).year, 0);
}

TEST(NSCalendar, LengthsBetweenAreTheLongestFirst) {
    const NSCalendar brussels = calendar();
    EXPECT_EQ(
        brussels.components(kAllUnits, local(brussels, 2016, 1, 31), local(brussels, 2018, 3, 12, 5, 6)),
        (NSDateComponents{.year = 2, .month = 1, .day = 5, .hour = 5, .minute = 6, .second = 0, .weekOfYear = 1}));
    // That day has 23 hours.
    EXPECT_EQ(
        brussels.components(Unit::day | Unit::hour, local(brussels, 2018, 3, 24, 12), local(brussels, 2018, 3, 25, 12)),
        (NSDateComponents{.day = 1, .hour = 0}));
    EXPECT_EQ(brussels.components(Unit::hour, local(brussels, 2018, 3, 24, 12), local(brussels, 2018, 3, 25, 12)).hour,
              23);
    EXPECT_EQ(brussels.components(Unit::month | Unit::day, local(brussels, 2018, 3, 5), local(brussels, 2018, 1, 31)),
              (NSDateComponents{.month = -1, .day = -5}));
}

TEST(NSCalendar, DatesBeyondItHaveNoFields) {
    const NSCalendar gmt = calendar(u"UTC");
    for (const double odd : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity(), 1e15, -1e300}) {
        const NSDate date = NSDate::sinceReferenceDate(odd);
        EXPECT_EQ(gmt.components(kAllUnits, date), NSDateComponents{});
        EXPECT_EQ(gmt.dateByAddingComponents({.day = 1}, date), std::nullopt);
        EXPECT_EQ(gmt.components(kAllUnits, date, NSDate()), NSDateComponents{});
        EXPECT_EQ(gmt.components(kAllUnits, NSDate(), date), NSDateComponents{});
    }
}

TEST(NSCalendar, ResultsBeyondItAreAbsentHoweverFar) {
    const NSCalendar brussels = calendar();
    for (const std::int64_t far : {std::int64_t{400'000'000'000'000}, std::int64_t{9'000'000'000'000'000},
                                   std::numeric_limits<std::int64_t>::max()}) {
        for (const std::int64_t count : {far, -far, -far - 1}) {
            for (const NSDateComponents& lengths :
                 {NSDateComponents{.year = count}, NSDateComponents{.month = count}, NSDateComponents{.day = count},
                  NSDateComponents{.hour = count}, NSDateComponents{.minute = count}, NSDateComponents{.second = count},
                  NSDateComponents{.weekOfYear = count}}) {
                EXPECT_EQ(brussels.dateByAddingComponents(lengths, NSDate()), std::nullopt) << count;
            }
            for (const NSDateComponents& fields :
                 {NSDateComponents{.year = count}, NSDateComponents{.month = count}, NSDateComponents{.day = count},
                  NSDateComponents{.hour = count}, NSDateComponents{.minute = count}, NSDateComponents{.second = count},
                  NSDateComponents{.weekOfYear = count}, NSDateComponents{.era = 0, .year = count}}) {
                EXPECT_EQ(brussels.dateFromComponents(fields), std::nullopt) << count;
            }
        }
    }
    // The years at its ends can be reached, and are found again.
    const NSDate last = brussels.dateFromComponents({.year = 5'828'963, .month = 1, .day = 1}).value();
    EXPECT_EQ(brussels.components(Unit::year, last).year, 5'828'963);
    EXPECT_EQ(brussels.components(Unit::year, local(brussels, 1970, 1, 1), last).year, 5'828'963 - 1970);
    EXPECT_EQ(brussels.dateFromComponents({.year = 5'828'964, .month = 1, .day = 1}), std::nullopt);
    const NSDate first = brussels.dateFromComponents({.era = 0, .year = 5'838'000, .month = 6, .day = 1}).value();
    EXPECT_EQ(brussels.components(Unit::year | Unit::era, first), (NSDateComponents{.era = 0, .year = 5'838'000}));
}

TEST(NSCalendar, CurrentOneHasTheUsersZoneAndLocale) {
    HostEnvironment::setTimeZoneIdentifier(u"Asia/Tokyo");
    HostEnvironment::setLocaleIdentifier(u"fr_BE");
    const NSCalendar current = NSCalendar::currentCalendar();
    EXPECT_EQ(current.timeZone().name(), u"Asia/Tokyo");
    EXPECT_EQ(current.locale(), NSLocale(u"fr_BE"));
    HostEnvironment::setTimeZoneIdentifier(std::nullopt);
    HostEnvironment::setLocaleIdentifier(std::nullopt);
}

// ---- Against ICU ---------------------------------------------------------------------------------------------------

class IcuCalendar {
public:
    IcuCalendar(const NSCalendar& like)
        : calendar_(like.timeZone().rules().icuZone->clone(),
                    icu::Locale(utf8(like.locale().localeIdentifier()).c_str()), status_) {
        // What ICU does by itself is to take the second.
        calendar_.setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
    }

    void setDate(const NSDate& date) { calendar_.setTime(std::floor(date.timeIntervalSince1970()) * 1000, status_); }
    NSDate date() { return NSDate::since1970(calendar_.getTime(status_) / 1000); }

    NSDateComponents components() {
        return {.era = get(UCAL_ERA),
                .year = get(UCAL_YEAR),
                .month = get(UCAL_MONTH) + 1,
                .day = get(UCAL_DATE),
                .hour = get(UCAL_HOUR_OF_DAY),
                .minute = get(UCAL_MINUTE),
                .second = get(UCAL_SECOND),
                .weekday = get(UCAL_DAY_OF_WEEK),
                .weekdayOrdinal = get(UCAL_DAY_OF_WEEK_IN_MONTH),
                .weekOfYear = get(UCAL_WEEK_OF_YEAR)};
    }
    NSDate build(int inYear, int inMonth, int inDay, int hour, int minute) {
        calendar_.clear();
        calendar_.set(inYear, inMonth - 1, inDay, hour, minute, 0);
        return date();
    }
    NSDate add(const NSDate& date, UCalendarDateFields field, int count) {
        setDate(date);
        calendar_.add(field, count, status_);
        return this->date();
    }
    int difference(const NSDate& from, const NSDate& to, UCalendarDateFields field) {
        setDate(from);
        return calendar_.fieldDifference(to.timeIntervalSince1970() * 1000, field, status_);
    }

private:
    std::int64_t get(UCalendarDateFields field) { return calendar_.get(field, status_); }

    UErrorCode status_ = U_ZERO_ERROR;
    icu::GregorianCalendar calendar_;
};

const std::vector<NSCalendar>& comparedCalendars() {
    static const std::vector<NSCalendar> all{calendar(), calendar(u"Pacific/Apia", u"en_US"),
                                             calendar(u"Australia/Lord_Howe", u"en_AU"),
                                             calendar(u"America/Sao_Paulo", u"pt_BR"), calendar(u"UTC", u"fa_IR")};
    return all;
}

/// Mostly dates that people use, some in all the years around the change of calendars, a few as far as ICU's count of
/// milliseconds is exact.
NSDate anyDate(std::mt19937_64& random) {
    const auto range = random() % 8;
    const double reach = range < 5 ? 4e9 : range < 7 ? 9e10 : 9e12;
    return NSDate::since1970(std::floor(std::uniform_real_distribution<double>(-reach, reach)(random)));
}

TEST(NSCalendar, ComponentsAreThoseOfIcu) {
    std::mt19937_64 random(6102);
    for (const NSCalendar& tested : comparedCalendars()) {
        IcuCalendar icu(tested);
        for (int i = 0; i < 20000; ++i) {
            const NSDate date = anyDate(random);
            icu.setDate(date);
            ASSERT_EQ(tested.components(kAllUnits, date), icu.components()) << date.timeIntervalSince1970();
        }
        // Every day around the change of calendars, where years and weeks are odd.
        for (int day = -1500; day < 1500; ++day) {
            const NSDate date = NSDate::since1970(-12219292800.0 + day * 86400.0);
            icu.setDate(date);
            ASSERT_EQ(tested.components(kAllUnits, date), icu.components()) << day;
        }
    }
}

TEST(NSCalendar, DatesFromComponentsAreThoseOfIcu) {
    std::mt19937_64 random(6103);
    const auto number = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    for (const NSCalendar& tested : comparedCalendars()) {
        IcuCalendar icu(tested);
        for (int i = 0; i < 20000; ++i) {
            const int year = number(0, 3) == 0 ? number(1575, 1590) : number(-100, 2500);
            const int month = number(-30, 40);
            const int day = number(-50, 60);
            const int hour = number(-30, 50);
            const int minute = number(-100, 160);
            ASSERT_EQ(
                tested.dateFromComponents({.year = year, .month = month, .day = day, .hour = hour, .minute = minute}),
                icu.build(year, month, day, hour, minute))
                << year << '-' << month << '-' << day << ' ' << hour << ':' << minute;
        }
    }
}

TEST(NSCalendar, SumsAndDifferencesAreThoseOfIcu) {
    std::mt19937_64 random(6104);
    const auto number = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    for (const NSCalendar& tested : comparedCalendars()) {
        IcuCalendar icu(tested);
        for (int i = 0; i < 1000; ++i) {
            const NSDate date = NSDate::since1970(number(-2'000'000'000, 2'000'000'000));
            const int days = number(-800, 800);
            ASSERT_EQ(tested.dateByAddingComponents({.day = days}, date), icu.add(date, UCAL_DATE, days));
            const int months = number(-800, 800);
            ASSERT_EQ(tested.dateByAddingComponents({.month = months}, date), icu.add(date, UCAL_MONTH, months));
            const int years = number(-500, 60);
            ASSERT_EQ(tested.dateByAddingComponents({.year = years}, date), icu.add(date, UCAL_YEAR, years));

            const NSDate other = NSDate::since1970(number(-2'000'000'000, 2'000'000'000));
            ASSERT_EQ(tested.components(Unit::year, date, other).year, icu.difference(date, other, UCAL_YEAR));
            ASSERT_EQ(tested.components(Unit::month, date, other).month, icu.difference(date, other, UCAL_MONTH));
            ASSERT_EQ(tested.components(Unit::day, date, other).day, icu.difference(date, other, UCAL_DATE));
        }
    }
}

}  // namespace
}  // namespace ZORPlatform
