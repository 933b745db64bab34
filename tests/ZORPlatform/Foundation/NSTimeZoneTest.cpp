// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSTimeZone.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSCalendar.h>
#include <ZORPlatform/Foundation/TimeZoneRulesInternal.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>

#include <support/EnvironmentVariable.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace ZORPlatform {
namespace {

using namespace std::chrono;

/// A change of a zone's offset that takes place every year, on a day told by its weekday.
struct YearlyChange {
    int firstYear;
    int lastYear;
    unsigned month;
    int sunday;         ///< From 1; counted from the end of the month where negative.
    seconds localTime;  ///< By the clocks that are about to be changed.
    seconds offsetAfter;
};

/// A change that took place once.
struct SingleChange {
    sys_seconds instant;
    seconds offsetAfter;
};

struct ZoneHistory {
    std::u16string_view name;
    seconds offsetIn1970;
    std::vector<YearlyChange> yearly;
    std::vector<SingleChange> single;
};

constexpr int kLastYear = 2037;

sys_days sundayOf(int inYear, unsigned inMonth, int number) {
    const year_month month = year(inYear) / std::chrono::month(inMonth);
    if (number < 0) return sys_days(month / Sunday[last]) + weeks(number + 1);
    return sys_days(month / Sunday[static_cast<unsigned>(number)]);
}

struct Change {
    sys_seconds instant;
    seconds before;
    seconds after;
};

/// The changes from 1970 on, in order, by the rules of the history alone.
std::vector<Change> changesOf(const ZoneHistory& history) {
    struct Announced {
        sys_seconds sortedBy;
        sys_seconds time;
        bool isLocal;
        seconds after;
    };
    std::vector<Announced> announced;
    for (const YearlyChange& rule : history.yearly) {
        for (int inYear = rule.firstYear; inYear <= rule.lastYear; ++inYear) {
            const sys_seconds time = sundayOf(inYear, rule.month, rule.sunday) + rule.localTime;
            announced.push_back({time, time, true, rule.offsetAfter});
        }
    }
    for (const SingleChange& change : history.single) {
        announced.push_back({change.instant, change.instant, false, change.offsetAfter});
    }
    std::sort(announced.begin(), announced.end(),
              [](const Announced& left, const Announced& right) { return left.sortedBy < right.sortedBy; });
    std::vector<Change> changes;
    seconds offset = history.offsetIn1970;
    for (const Announced& change : announced) {
        changes.push_back({change.isLocal ? change.time - offset : change.time, offset, change.after});
        offset = change.after;
    }
    return changes;
}

sys_seconds utc(int inYear, unsigned inMonth, unsigned inDay, hours hour, minutes minute = minutes(0)) {
    return sys_days(year(inYear) / month(inMonth) / day(inDay)) + hour + minute;
}

/// As the governments announced them.
const std::vector<ZoneHistory>& histories() {
    static const std::vector<ZoneHistory> table{
        {u"Europe/Brussels",
         1h,
         {{1977, 1980, 4, 1, 2h, 2h},
          {1977, 1977, 9, -1, 3h, 1h},
          {1978, 1978, 10, 1, 3h, 1h},
          {1979, 1995, 9, -1, 3h, 1h},
          {1981, kLastYear, 3, -1, 2h, 2h},
          {1996, kLastYear, 10, -1, 3h, 1h}},
         {}},
        // Half an hour of daylight saving, and a whole one in its first years.
        {u"Australia/Lord_Howe",
         10h,
         {{1981, 1984, 10, -1, 2h, 11h + 30min},
          {1982, 1985, 3, 1, 2h, 10h + 30min},
          {1985, 1985, 10, -1, 2h, 11h},
          {1986, 1989, 3, 3, 2h, 10h + 30min},
          {1986, 1986, 10, 3, 2h, 11h},
          {1987, 1999, 10, -1, 2h, 11h},
          {1990, 1995, 3, 1, 2h, 10h + 30min},
          {1996, 2005, 3, -1, 2h, 10h + 30min},
          {2000, 2000, 8, -1, 2h, 11h},
          {2001, 2007, 10, -1, 2h, 11h},
          {2006, 2006, 4, 1, 2h, 10h + 30min},
          {2007, 2007, 3, -1, 2h, 10h + 30min},
          {2008, kLastYear, 4, 1, 2h, 10h + 30min},
          {2008, kLastYear, 10, 1, 2h, 11h}},
         {{utc(1981, 2, 28, 14h), 10h + 30min}}},
        // Went without 30 December 2011.
        {u"Pacific/Apia",
         -11h,
         {{2010, 2010, 9, -1, 0h, -10h}, {2012, 2021, 4, 1, 4h, 13h}, {2012, 2020, 9, -1, 3h, 14h}},
         {{utc(2011, 4, 2, 14h), -11h}, {utc(2011, 9, 24, 14h), -10h}, {utc(2011, 12, 30, 10h), 14h}}},
        // Moved its standard time by half an hour, and back.
        {u"America/Caracas", -4h, {}, {{utc(2007, 12, 9, 7h), -(4h + 30min)}, {utc(2016, 5, 1, 7h), -4h}}},
    };
    return table;
}

NSTimeZone zone(std::u16string_view name) { return NSTimeZone::timeZoneWithName(name).value(); }

seconds offset(const NSTimeZone& zone, sys_seconds instant) {
    return seconds(zone.secondsFromGMTForDate(NSDate(instant)));
}

/// The instant at which a zone's calendar shows a local time.
sys_seconds instantOf(const NSTimeZone& zone, sys_seconds local) {
    const auto date = floor<days>(local);
    const year_month_day day(date);
    NSDateComponents fields{.year = int(day.year()), .month = unsigned(day.month()), .day = unsigned(day.day())};
    fields.second = (local - date).count();
    const NSCalendar calendar(NSLocale(u"nl_BE"), zone);
    return sys_seconds(
        seconds(static_cast<std::int64_t>(calendar.dateFromComponents(fields)->timeIntervalSince1970())));
}

TEST(NSTimeZone, EveryChangeSince1970IsAtTheMomentThatWasAnnounced) {
    for (const ZoneHistory& history : histories()) {
        const NSTimeZone tested = zone(history.name);
        NSDate at = NSDate(sys_seconds());
        for (const Change& change : changesOf(history)) {
            const auto next = tested.nextDaylightSavingTimeTransitionAfterDate(at);
            ASSERT_EQ(next, NSDate(change.instant)) << utf8(history.name) << " after " << at.timeIntervalSince1970();
            at = *next;
        }
        const auto beyond = tested.nextDaylightSavingTimeTransitionAfterDate(at);
        EXPECT_TRUE(!beyond || *beyond >= NSDate(sys_days(year(kLastYear + 1) / 1 / 1))) << utf8(history.name);
    }
}

TEST(NSTimeZone, OffsetsChangeWithTheSecondOfEachChange) {
    for (const ZoneHistory& history : histories()) {
        const NSTimeZone tested = zone(history.name);
        EXPECT_EQ(offset(tested, sys_seconds()), history.offsetIn1970);
        for (const Change& change : changesOf(history)) {
            EXPECT_EQ(offset(tested, change.instant - 1s), change.before) << utf8(history.name);
            EXPECT_EQ(offset(tested, change.instant), change.after) << utf8(history.name);
            EXPECT_EQ(offset(tested, change.instant + 1s), change.after) << utf8(history.name);
        }
    }
}

TEST(NSTimeZone, LocalTimesThatAreSkippedAtAnyChangeMoveForwardByAsMuch) {
    for (const ZoneHistory& history : histories()) {
        const NSTimeZone tested = zone(history.name);
        for (const Change& change : changesOf(history)) {
            for (seconds past = 0s; past < change.after - change.before; past += 15min) {
                const sys_seconds skipped = change.instant + change.before + past;
                EXPECT_EQ(instantOf(tested, skipped), change.instant + past) << utf8(history.name);
            }
            EXPECT_EQ(instantOf(tested, change.instant + change.before - 1s), change.instant - 1s);
            EXPECT_EQ(instantOf(tested, change.instant + std::max(change.before, change.after)),
                      change.instant + std::max(change.before - change.after, 0s));
        }
    }
}

TEST(NSTimeZone, LocalTimesThatComeTwiceAtAnyChangeAreTheFirstOfThem) {
    for (const ZoneHistory& history : histories()) {
        const NSTimeZone tested = zone(history.name);
        for (const Change& change : changesOf(history)) {
            for (seconds before = 1s; before <= change.before - change.after; before += 15min) {
                const sys_seconds twice = change.instant + change.before - before;
                EXPECT_EQ(instantOf(tested, twice), change.instant - before) << utf8(history.name);
            }
        }
    }
}

TEST(NSTimeZone, OffsetsAreThoseOfIcuAtAnyTime) {
    std::mt19937_64 random(6101);
    // Also before and after the years whose changes are kept.
    std::uniform_int_distribution<std::int64_t> anyTime(-6'000'000'000, 9'000'000'000);
    for (const std::u16string_view name :
         {u"Europe/Brussels", u"Africa/Casablanca", u"America/New_York", u"Asia/Gaza", u"Pacific/Kwajalein",
          u"Europe/Dublin", u"Antarctica/Troll", u"America/Juneau", u"UTC", u"GMT+02:30", u"EST5EDT"}) {
        const NSTimeZone tested = zone(name);
        const TimeZoneRules& rules = tested.rules();
        for (int i = 0; i < 2000; ++i) {
            const std::int64_t time = anyTime(random);
            std::int32_t raw = 0;
            std::int32_t saved = 0;
            UErrorCode status = U_ZERO_ERROR;
            rules.icuZone->getOffset(static_cast<double>(time) * 1000, false, raw, saved, status);
            EXPECT_EQ(rules.offsetAt(time), (raw + saved) / 1000) << utf8(name) << " at " << time;
            rules.icuZone->getOffsetFromLocal(static_cast<double>(time) * 1000, UCAL_TZ_LOCAL_FORMER,
                                              UCAL_TZ_LOCAL_FORMER, raw, saved, status);
            EXPECT_EQ(rules.offsetAtLocal(time), (raw + saved) / 1000) << utf8(name) << " at local " << time;
        }
    }
}

TEST(NSTimeZone, NamesThatAreNoZonesGiveNone) {
    for (const std::u16string_view name :
         {u"", u"Europe/Brussel", u"europe/brussels ", u"Etc/Unknown", u"CET-1CEST,M3.5.0,M10.5.0/3", u"GMT+99:00"}) {
        EXPECT_FALSE(NSTimeZone::timeZoneWithName(name)) << utf8(name);
    }
    EXPECT_FALSE(NSTimeZone::timeZoneWithName(std::u16string(1000, u'x')));
    EXPECT_FALSE(NSTimeZone::timeZoneWithName(std::u16string_view(u"\xD800")));
}

TEST(NSTimeZone, NameIsKeptAsGivenAndDecidesAboutEquality) {
    EXPECT_EQ(zone(u"GMT+2").name(), u"GMT+2");
    EXPECT_EQ(zone(u"GMT+2").secondsFromGMTForDate(NSDate()), 7200);
    EXPECT_EQ(zone(u"Europe/Brussels"), zone(u"Europe/Brussels"));
    EXPECT_FALSE(zone(u"UTC") == zone(u"GMT"));
}

TEST(NSTimeZone, LocalTimeOf1880IsKnownToTheSecond) {
    // Brussels counted by the sun over its observatory.
    EXPECT_EQ(zone(u"Europe/Brussels").secondsFromGMTForDate(NSDate(utc(1870, 1, 1, 0h))), 1050);
}

TEST(NSTimeZone, DatesThatAreNoNumbersHaveNoOffset) {
    for (const double odd :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), -1e300}) {
        EXPECT_EQ(zone(u"Europe/Brussels").secondsFromGMTForDate(NSDate::since1970(odd)), 0);
        EXPECT_EQ(zone(u"Europe/Brussels").nextDaylightSavingTimeTransitionAfterDate(NSDate::since1970(odd)),
                  std::nullopt);
    }
}

TEST(NSTimeZone, LocalZoneIsTheHostEnvironments) {
    HostEnvironment::setTimeZoneIdentifier(u"Asia/Kolkata");
    EXPECT_EQ(NSTimeZone::localTimeZone().name(), u"Asia/Kolkata");
    HostEnvironment::setTimeZoneIdentifier(u"Asia/Nowhere");
    EXPECT_EQ(NSTimeZone::localTimeZone().name(), u"GMT");
    HostEnvironment::setTimeZoneIdentifier(std::nullopt);
}

TEST(NSTimeZone, MachinesZoneIsLookedUpAgainAfterAReset) {
    const support::EnvironmentVariable first("TZ", "Europe/Lisbon");
    NSTimeZone::resetSystemTimeZone();
    EXPECT_EQ(NSTimeZone::localTimeZone().name(), u"Europe/Lisbon");
    {
        const support::EnvironmentVariable second("TZ", ":/usr/share/zoneinfo/Europe/Madrid");
        EXPECT_EQ(NSTimeZone::localTimeZone().name(), u"Europe/Lisbon");
        NSTimeZone::resetSystemTimeZone();
        EXPECT_EQ(NSTimeZone::localTimeZone().name(), u"Europe/Madrid");
    }
    NSTimeZone::resetSystemTimeZone();
    EXPECT_EQ(NSTimeZone::localTimeZone().name(), u"Europe/Lisbon");
}

TEST(HostEnvironment, TheTimeZoneIsTheOneThatTheEnvironmentNames) {
    for (const auto& [value, name] :
         {std::pair{"Europe/Brussels", u"Europe/Brussels"}, std::pair{":CET", u"CET"},
          std::pair{"/usr/share/zoneinfo/Asia/Tokyo", u"Asia/Tokyo"}, std::pair{"", u"GMT"}, std::pair{":", u"GMT"}}) {
        const support::EnvironmentVariable variable("TZ", value);
        EXPECT_EQ(HostEnvironment::timeZoneIdentifier(), name);
    }
    const support::EnvironmentVariable none("TZ", std::nullopt);
    EXPECT_FALSE(HostEnvironment::timeZoneIdentifier().empty());
    HostEnvironment::setTimeZoneIdentifier(u"Asia/Tokyo");
    EXPECT_EQ(HostEnvironment::timeZoneIdentifier(), u"Asia/Tokyo");
    HostEnvironment::setTimeZoneIdentifier(std::nullopt);
}

TEST(HostEnvironment, AMomentThatWasSetStandsStill) {
    HostEnvironment::setNow(NSDate::since1970(1520253000.25));
    EXPECT_EQ(NSDate::date(), NSDate::since1970(1520253000.25));
    EXPECT_EQ(NSDate::date(), HostEnvironment::now());
    HostEnvironment::setNow(std::nullopt);
    const auto clock = NSDate(system_clock::now());
    EXPECT_LT(std::abs(NSDate::date().timeIntervalSince1970() - clock.timeIntervalSince1970()), 3600);
}

}  // namespace
}  // namespace ZORPlatform
