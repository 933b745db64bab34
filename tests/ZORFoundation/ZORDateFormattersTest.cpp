// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORDateFormatters.h>

#include <ZORFoundation/DateFormatterExtension.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>

#include <gtest/gtest.h>

namespace ZORFoundation {
namespace {

using namespace DateFormatterExtension;
using namespace ZORDateFormatters;
using ZORPlatform::HostEnvironment;
using ZORPlatform::NSDate;

const NSLocale kDutch(u"nl_BE");
const NSDate kDate = NSDate::since1970(1520256645.5);

class ZORDateFormatters : public testing::Test {
protected:
    ZORDateFormatters() {
        HostEnvironment::setTimeZoneIdentifier(u"Europe/Brussels");
        HostEnvironment::setLocaleIdentifier(u"fr_BE");
    }
    ~ZORDateFormatters() override {
        HostEnvironment::setTimeZoneIdentifier(std::nullopt);
        HostEnvironment::setLocaleIdentifier(std::nullopt);
    }
};

TEST_F(ZORDateFormatters, EachFactorySetsItsPattern) {
    EXPECT_EQ(zor_ddMMyyyyDateFormatterWithLocale(kDutch).dateFormat(), u"dd/MM/yyyy");
    EXPECT_EQ(zor_ddMMyyyyConstrainedDateFormatterWithLocale(kDutch).dateFormat(), u"ddMMyyyy");
    EXPECT_EQ(zor_dateWithTimeWithLocale(kDutch).dateFormat(), u"dd/MM/yyyy HH:mm:ss zzz");
    EXPECT_EQ(zor_fullDateFormatterWithLocale(kDutch).dateFormat(), u"EEEE dd MMMM yyyy");
    EXPECT_EQ(zor_fullDateFormatterWithLocale(kDutch, true).dateFormat(), u"EEEE dd MMMM yyyy");
    EXPECT_EQ(zor_fullDateFormatterWithLocale(kDutch, false).dateFormat(), u"dd MMMM yyyy");
    EXPECT_EQ(zor_fullDateFormatterWithLocale(kDutch, true, true).dateFormat(), u"EEEE dd MMMM");
    EXPECT_EQ(zor_fullDateFormatterWithLocale(kDutch, true, false).dateFormat(), u"EEEE dd MMMM yyyy");
    EXPECT_EQ(zor_fullDateFormatterWithLocale(kDutch, false, true).dateFormat(), u"dd MMMM");
    EXPECT_EQ(zor_fullDateFormatterWithLocale(kDutch, false, false).dateFormat(), u"dd MMMM yyyy");
    EXPECT_EQ(zor_iso8601DateFormatter().dateFormat(), u"yyyy-MM-dd'T'HH:mm:ssZZZZ");
    EXPECT_EQ(zor_iso8601DateFormatterWithMilliseconds().dateFormat(), u"yyyy-MM-dd'T'HH:mm:ss.SSSZ");
}

TEST_F(ZORDateFormatters, LocaleIsTheOneGivenAndTheZoneTheUsers) {
    EXPECT_EQ(zor_fullDateFormatterWithLocale(kDutch).locale(), kDutch);
    EXPECT_EQ(zor_fullDateFormatterWithLocale(kDutch).stringFromDate(kDate), u"maandag 05 maart 2018");
    EXPECT_EQ(zor_dateWithTimeWithLocale(kDutch).stringFromDate(kDate), u"05/03/2018 14:30:45 CET");
    const NSDateFormatter kept = zor_dateWithTimeWithLocale(kDutch);
    HostEnvironment::setTimeZoneIdentifier(u"Asia/Kolkata");
    EXPECT_EQ(kept.stringFromDate(kDate), u"05/03/2018 19:00:45 GMT+5:30");
}

TEST_F(ZORDateFormatters, ThoseForTheWireFollowTheUsersLocaleAndZone) {
    const NSDateFormatter plain = zor_iso8601DateFormatter();
    const NSDateFormatter milliseconds = zor_iso8601DateFormatterWithMilliseconds();
    EXPECT_EQ(plain.stringFromDate(kDate), u"2018-03-05T14:30:45UTC+01:00");
    EXPECT_EQ(milliseconds.stringFromDate(kDate), u"2018-03-05T14:30:45.500+0100");
    HostEnvironment::setTimeZoneIdentifier(u"UTC");
    HostEnvironment::setLocaleIdentifier(u"nl_BE");
    EXPECT_EQ(plain.stringFromDate(kDate), u"2018-03-05T13:30:45GMT");
    EXPECT_EQ(milliseconds.stringFromDate(kDate), u"2018-03-05T13:30:45.500+0000");
    EXPECT_EQ(milliseconds.dateFromString(u"2018-03-05T14:30:45.500+0100"), kDate);
}

TEST_F(ZORDateFormatters, EachCallGivesAFormatterOfItsOwn) {
    NSDateFormatter changed = zor_ddMMyyyyDateFormatterWithLocale(kDutch);
    changed.setDateFormat(u"yy");
    EXPECT_EQ(zor_ddMMyyyyDateFormatterWithLocale(kDutch).dateFormat(), u"dd/MM/yyyy");
}

}  // namespace
}  // namespace ZORFoundation
