// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/DateExtension.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>

#include <limits>
#include <optional>

namespace ZORFoundation {
namespace {

using namespace ZORFoundation::DateExtension;
using ZORPlatform::HostEnvironment;
using ZORPlatform::utf8;

constexpr double kHour = 3600;
constexpr double kDay = 24 * kHour;

/// Monday 5 March 2018, 12:30 UTC.
const NSDate kNow = NSDate::since1970(1520253000);
const NSDate kNowhere = NSDate::since1970(std::numeric_limits<double>::quiet_NaN());

NSDate fromNow(double seconds) { return NSDate::since1970(kNow.timeIntervalSince1970() + seconds); }

class DateExtensionTest : public testing::Test {
protected:
    DateExtensionTest() {
        HostEnvironment::setTimeZoneIdentifier(u"Europe/Brussels");
        HostEnvironment::setLocaleIdentifier(u"nl_BE");
        HostEnvironment::setNow(kNow);
    }
    ~DateExtensionTest() override {
        HostEnvironment::setTimeZoneIdentifier(std::nullopt);
        HostEnvironment::setLocaleIdentifier(std::nullopt);
        HostEnvironment::setNow(std::nullopt);
    }
};

using DateExtensionDeathTest = DateExtensionTest;

TEST_F(DateExtensionTest, DaysAreComparedByTheLocalCalendar) {
    // Now is 13:30 in Brussels.
    struct Row {
        double firstSecond;
        bool (*isDay)(const NSDate&);
    };
    for (const Row& row : {Row{-13.5 * kHour - 2 * kDay, isDayBeforeYesterday}, Row{-13.5 * kHour - kDay, isYesterday},
                           Row{-13.5 * kHour, isToday}, Row{-13.5 * kHour + kDay, isTomorrow},
                           Row{-13.5 * kHour + 2 * kDay, isDayAfterTomorrow}}) {
        EXPECT_FALSE(row.isDay(fromNow(row.firstSecond - 1)));
        EXPECT_TRUE(row.isDay(fromNow(row.firstSecond)));
        EXPECT_TRUE(row.isDay(fromNow(row.firstSecond + kDay - 1)));
        EXPECT_FALSE(row.isDay(fromNow(row.firstSecond + kDay)));
    }
    HostEnvironment::setTimeZoneIdentifier(u"Asia/Tokyo");
    EXPECT_TRUE(isTomorrow(fromNow(2.5 * kHour)));
}

TEST_F(DateExtensionTest, AfterTomorrowComparesMomentsNotDays) {
    EXPECT_FALSE(isAfterTomorrow(fromNow(23 * kHour)));
    EXPECT_FALSE(isAfterTomorrow(fromNow(24 * kHour)));
    EXPECT_TRUE(isAfterTomorrow(fromNow(24 * kHour + 0.001)));
    EXPECT_TRUE(isAfterTomorrow(fromNow(25 * kHour)));
    // The day before the clocks are put forward is over in 23 hours.
    HostEnvironment::setNow(NSDate::since1970(1521889200));
    EXPECT_TRUE(isAfterTomorrow(NSDate::since1970(1521889200 + 23 * kHour + 1)));
    EXPECT_FALSE(isAfterTomorrow(NSDate::since1970(1521889200 + 23 * kHour)));
}

TEST_F(DateExtensionTest, EqualMomentsCountAsEarlierButNotAsLater) {
    EXPECT_TRUE(isEarlierThanDate(kNow, kNow));
    EXPECT_FALSE(isLaterThanDate(kNow, kNow));
    EXPECT_TRUE(isLaterOrEqualToDate(kNow, kNow));
    EXPECT_TRUE(isEqualToDate(kNow, kNow));
    const NSDate later = fromNow(0.001);
    EXPECT_TRUE(isEarlierThanDate(kNow, later));
    EXPECT_FALSE(isEarlierThanDate(later, kNow));
    EXPECT_TRUE(isLaterThanDate(later, kNow));
    EXPECT_FALSE(isLaterOrEqualToDate(kNow, later));
    EXPECT_FALSE(isEqualToDate(kNow, later));
}

TEST_F(DateExtensionTest, YearsAreThoseOfTheLocalDay) {
    const NSDate lastSecondOf2017 = NSDate::since1970(1514764799);
    EXPECT_EQ(year(lastSecondOf2017), 2018);
    EXPECT_TRUE(isThisYear(lastSecondOf2017));
    EXPECT_TRUE(isSameYearAsDate(lastSecondOf2017, kNow));
    HostEnvironment::setTimeZoneIdentifier(u"UTC");
    EXPECT_EQ(year(lastSecondOf2017), 2017);
    EXPECT_FALSE(isThisYear(lastSecondOf2017));
    EXPECT_FALSE(isSameYearAsDate(lastSecondOf2017, kNow));
}

TEST_F(DateExtensionTest, DatesWithoutADayShareIt) {
    const NSDate farAway = NSDate::since1970(1e300);
    EXPECT_TRUE(isEqualToDateIgnoringTime(kNowhere, farAway));
    EXPECT_TRUE(isSameYearAsDate(kNowhere, farAway));
    EXPECT_FALSE(isEqualToDateIgnoringTime(kNowhere, kNow));
    EXPECT_FALSE(isToday(kNowhere));
}

TEST_F(DateExtensionTest, AddingKeepsTheLocalTime) {
    const NSDate noon = NSDate::since1970(1521889200);  // The day before the clocks are put forward.
    EXPECT_EQ(dateByAddingDays(noon, 1), NSDate::since1970(1521972000));
    EXPECT_EQ(dateBySubtractingDays(noon, -1), NSDate::since1970(1521972000));
    EXPECT_EQ(dateBySubtractingDays(noon, 1), NSDate::since1970(1521802800));
    EXPECT_EQ(dateByAddingMonths(NSDate::since1970(1517385600), 1), NSDate::since1970(1519804800));
    EXPECT_EQ(dateByAddingYears(NSDate::since1970(1456732800), 1), NSDate::since1970(1488268800));
    EXPECT_EQ(dateByAddingDays(fromNow(0.5), 0), fromNow(0.5));
}

TEST_F(DateExtensionTest, TimeOfTheDayIsSetWithoutSeconds) {
    const NSDate midnight = NSDate::since1970(1520204400);
    EXPECT_EQ(dateAt(fromNow(0.5), 14, 30), NSDate::since1970(midnight.timeIntervalSince1970() + 14.5 * kHour));
    EXPECT_EQ(dateAt(kNow, 0, 0), midnight);
    EXPECT_EQ(dateAt(kNow, 24, -1), NSDate::since1970(midnight.timeIntervalSince1970() + kDay - 60));
}

TEST_F(DateExtensionTest, TimeTextKeepsTheSeconds) {
    const NSDate date = NSDate::since1970(1520204400 + 9 * kHour + 12 * 60 + 45.5);
    struct Row {
        std::u16string_view text;
        double hour, minute;
    };
    for (const Row& row : {Row{u"14:30", 14, 30}, Row{u"7:5", 7, 5}, Row{u"07:05:59", 7, 5}, Row{u":7:5", 7, 5},
                           Row{u"7::5", 7, 5}, Row{u":::7:::5:x", 7, 5}, Row{u"0:0", 0, 0}, Row{u"25:00", 25, 0},
                           Row{u"-1:+90", -1, 90}, Row{u"0014:030", 14, 30}}) {
        EXPECT_EQ(setTime(date, row.text), NSDate::since1970(1520204400 + row.hour * kHour + row.minute * 60 + 45))
            << utf8(row.text);
    }
    // In the week that belongs to the next year, the day stays.
    const NSDate lastDay = NSDate::since1970(1546250400);
    EXPECT_EQ(setTime(lastDay, u"14:30"), NSDate::since1970(1546263000));
}

TEST_F(DateExtensionDeathTest, TimeTextThatIsNoneStopsTheProcess) {
    for (const std::u16string_view text : {u"", u":", u"7", u"7:", u"::7"}) {
        EXPECT_DEATH((void)setTime(kNow, text), "setTime: the text must have an hour and a minute") << utf8(text);
    }
    for (const std::u16string_view text :
         {u"a:b", u"7:x", u"7.5:30", u" 7:30", u"7: 30", u"7:30 ", u"+:30", u"\u0667:30", u"9223372036854775808:0"}) {
        EXPECT_DEATH((void)setTime(kNow, text), "setTime: hour and minute must be decimal integers") << utf8(text);
    }
    EXPECT_DEATH((void)setTime(kNow, u"9223372036854775807:0"), "setTime: the calendar must have such a date");
}

TEST_F(DateExtensionDeathTest, DatesThatTheCalendarDoesNotHaveStopTheProcess) {
    constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
    EXPECT_DEATH((void)dateByAddingDays(kNow, kHighest), "dateByAddingDays: ");
    EXPECT_DEATH((void)dateByAddingMonths(kNow, kLowest), "dateByAddingMonths: ");
    EXPECT_DEATH((void)dateByAddingYears(kNow, kLowest), "dateByAddingYears: ");
    EXPECT_DEATH((void)dateBySubtractingDays(kNow, kHighest), "dateBySubtractingDays: the calendar");
    EXPECT_DEATH((void)dateBySubtractingDays(kNow, kLowest), "dateBySubtractingDays: the count must not be");
    EXPECT_DEATH((void)dateAt(kNow, kHighest, 0), "dateAt: ");
    EXPECT_DEATH((void)dateAt(kNowhere, 0, 0), "dateAt: ");
    EXPECT_DEATH((void)setTime(kNowhere, u"14:30"), "setTime: the calendar");
    EXPECT_DEATH((void)dateByAddingDays(kNowhere, 1), "dateByAddingDays: ");
    EXPECT_DEATH((void)year(kNowhere), "year: ");
}

TEST_F(DateExtensionTest, DisplaysAreInTheOrderOfTheLocale) {
    struct Row {
        std::u16string_view locale, shortOne, medium, longOne, noDay;
    };
    for (const Row& row :
         {Row{u"en_US", u"Mar 5", u"Mo, Mar 5", u"Monday, 03/05/2018", u"March 05, 2018"},
          Row{u"en_GB", u"5 Mar", u"Mo, 5 Mar", u"Monday, 05/03/2018", u"05 March 2018"},
          Row{u"nl_BE", u"5 mrt", u"ma 5 mrt", u"maandag 05/03/2018", u"05 maart 2018"},
          Row{u"fr_BE", u"5 mars", u"lu 5 mars", u"lundi 05/03/2018", u"05 mars 2018"},
          Row{u"de_BE", u"5. M\u00E4rz", u"Mo., 5. M\u00E4rz", u"Montag, 05.03.2018", u"05. M\u00E4rz 2018"}}) {
        EXPECT_EQ(shortFormatWithLocale(kNow, row.locale), row.shortOne);
        EXPECT_EQ(mediumFormatWithLocale(kNow, row.locale), row.medium);
        EXPECT_EQ(longFormatWithLocale(kNow, row.locale), row.longOne);
        EXPECT_EQ(longFormatNoDayFullMonthWithLocale(kNow, row.locale), row.noDay);
    }
    EXPECT_EQ(formatWithTemplate(kNow, u"yMMMd", u"nl_BE"), u"5 mrt 2018");
    EXPECT_EQ(formatWithTemplate(kNow, u"", u"nl_BE"), u"");
    EXPECT_EQ(formatWithTemplate(kNowhere, u"yMMMd", u"nl_BE"), u"");
}

TEST_F(DateExtensionTest, DisplaysAreInTheUsersTimeZone) {
    const NSDate lateAtNight = NSDate::since1970(1520204400 - 1);
    EXPECT_EQ(shortFormatWithLocale(lateAtNight, u"nl_BE"), u"4 mrt");
    HostEnvironment::setTimeZoneIdentifier(u"Asia/Tokyo");
    EXPECT_EQ(shortFormatWithLocale(lateAtNight, u"nl_BE"), u"5 mrt");
}

}  // namespace
}  // namespace ZORFoundation
