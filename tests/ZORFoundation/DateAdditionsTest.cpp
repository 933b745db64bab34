// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/DateAdditions.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSCalendar.h>

#include <gtest/gtest.h>

#include <limits>

namespace ZORFoundation {
namespace {

using namespace ZORFoundation::ZORAdditions;
using ZORPlatform::HostEnvironment;

/// Monday 5 March 2018, 12:30 UTC.
const NSDate kNow = NSDate::since1970(1520253000);
const NSDate kNowhere = NSDate::since1970(std::numeric_limits<double>::quiet_NaN());

class DateAdditions : public testing::Test {
protected:
    DateAdditions() {
        HostEnvironment::setTimeZoneIdentifier(u"Europe/Brussels");
        HostEnvironment::setLocaleIdentifier(u"nl_BE");
        HostEnvironment::setNow(kNow);
    }
    ~DateAdditions() override {
        HostEnvironment::setTimeZoneIdentifier(std::nullopt);
        HostEnvironment::setLocaleIdentifier(std::nullopt);
        HostEnvironment::setNow(std::nullopt);
    }
};

TEST_F(DateAdditions, OffsetsAreCalendarDaysFromNow) {
    EXPECT_EQ(zor_tomorrow(), NSDate::since1970(1520339400));
    EXPECT_EQ(zor_dateWithOffset(0), kNow);
    EXPECT_EQ(zor_dateWithOffset(-30), NSDate::since1970(1517661000));
    // The clocks are put forward in between.
    EXPECT_EQ(zor_dateWithOffset(30), NSDate::since1970(1520253000 + 30 * 86400 - 3600));
}

TEST_F(DateAdditions, DateOnlyIsLocalMidnight) {
    EXPECT_EQ(zor_dateOnly(kNow), NSDate::since1970(1520204400));
    HostEnvironment::setTimeZoneIdentifier(u"America/New_York");
    EXPECT_EQ(zor_dateOnly(kNow), NSDate::since1970(1520226000));
    // The clocks went from midnight to one.
    HostEnvironment::setTimeZoneIdentifier(u"America/Sao_Paulo");
    EXPECT_EQ(zor_dateOnly(NSDate::since1970(1541332800)), NSDate::since1970(1541300400));
}

TEST_F(DateAdditions, DateFromDayIsMidnightUtcInEveryZone) {
    for (const std::u16string_view zone : {u"Europe/Brussels", u"America/New_York", u"Pacific/Apia", u"UTC"}) {
        HostEnvironment::setTimeZoneIdentifier(std::u16string(zone));
        EXPECT_EQ(zor_dateFromDay(5, 3, 2018), NSDate::since1970(1520208000));
    }
    EXPECT_EQ(zor_dateFromDay(0, 3, 2018), zor_dateFromDay(28, 2, 2018));
    EXPECT_EQ(zor_dateFromDay(1, 13, 2018), zor_dateFromDay(1, 1, 2019));
}

TEST_F(DateAdditions, YearsAreWholeOnes) {
    const auto date = [](int day, int month, int year) { return zor_dateFromDay(day, month, year).value(); };
    EXPECT_EQ(zor_yearsFromDate(date(1, 3, 2000), date(28, 2, 2018)), 17);
    EXPECT_EQ(zor_yearsFromDate(date(1, 3, 2000), date(1, 3, 2018)), 18);
    EXPECT_EQ(zor_yearsFromDate(date(28, 2, 2018), date(1, 3, 2000)), -17);
    EXPECT_EQ(zor_yearsFromDate(date(29, 2, 2000), date(28, 2, 2001)), 1);
}

TEST_F(DateAdditions, SingleFieldsAreThoseOfTheLocalDay) {
    const NSDate lastSecondOf2017 = NSDate::since1970(1514764799);
    EXPECT_EQ(zor_year(lastSecondOf2017), 2018);
    EXPECT_EQ(zor_month(lastSecondOf2017), 1);
    EXPECT_EQ(zor_day(lastSecondOf2017), 1);
    HostEnvironment::setTimeZoneIdentifier(u"UTC");
    EXPECT_EQ(zor_year(lastSecondOf2017), 2017);
    EXPECT_EQ(zor_month(lastSecondOf2017), 12);
    EXPECT_EQ(zor_day(lastSecondOf2017), 31);
}

TEST_F(DateAdditions, FieldsAreThoseThatAMaskNames) {
    EXPECT_EQ(dateComponentsForComponent(kNow, static_cast<NSCalendarUnit>(28)),
              (NSDateComponents{.year = 2018, .month = 3, .day = 5}));
    EXPECT_EQ(dateComponentsForComponent(kNow, static_cast<NSCalendarUnit>(0x26FC)),
              (NSDateComponents{.year = 2018,
                                .month = 3,
                                .day = 5,
                                .hour = 13,
                                .minute = 30,
                                .second = 0,
                                .weekday = 2,
                                .weekdayOrdinal = 1,
                                .weekOfYear = 10}));
}

TEST_F(DateAdditions, WhatTheCalendarCannotNameIsAbsent) {
    EXPECT_EQ(zor_dateOnly(kNowhere), std::nullopt);
    EXPECT_EQ(zor_dateWithOffset(std::numeric_limits<std::int64_t>::min()), std::nullopt);
    EXPECT_EQ(zor_dateFromDay(1, 1, std::numeric_limits<std::int64_t>::max()), std::nullopt);
    EXPECT_EQ(zor_yearsFromDate(kNow, kNowhere), NSDateComponentUndefined);
    EXPECT_EQ(zor_year(kNowhere), NSDateComponentUndefined);
    EXPECT_EQ(zor_month(kNowhere), NSDateComponentUndefined);
    EXPECT_EQ(zor_day(kNowhere), NSDateComponentUndefined);
    EXPECT_EQ(dateComponentsForComponent(kNowhere, NSCalendarUnit::day), NSDateComponents{});
}

}  // namespace
}  // namespace ZORFoundation
