// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSDateFormatter.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSCalendar.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace ZORPlatform {
namespace {

template <class Work>
void inThreads(Work work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round) work(round);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

TEST(NSDateFormatter, OneIsReadFromSeveralThreads) {
    NSDateFormatter full;
    full.setDateFormat(u"EEEE dd MMMM yyyy HH:mm zzz");
    full.setLocale(NSLocale(u"nl_BE"));
    full.setTimeZone(NSTimeZone::timeZoneWithName(u"Europe/Brussels").value());
    NSDateFormatter numbers = full;
    numbers.setDateFormat(u"dd/MM/yyyy");
    const NSDate date = NSDate::since1970(1520204400);
    inThreads([&](int) {
        EXPECT_EQ(full.stringFromDate(date), u"maandag 05 maart 2018 00:00 CET");
        EXPECT_EQ(full.dateFromString(u"maandag 05 maart 2018 00:00 CET"), date);
        EXPECT_EQ(numbers.stringFromDate(date), u"05/03/2018");
        EXPECT_EQ(NSDateFormatter::dateFormatFromTemplate(u"d MMM", NSLocale(u"de_BE")), u"d. MMM");
    });
}

TEST(NSTimeZone, SeveralThreadsNoteDownTheChangesOfOneZone) {
    const NSTimeZone zone = NSTimeZone::timeZoneWithName(u"America/Santiago").value();
    const NSCalendar calendar(NSLocale(u"es_CL"), zone);
    const auto fieldsAndBack = [&](int round) {
        // Another span of years each time.
        const NSDate winter = NSDate::since1970(round * 86400.0 * 500);
        const NSDateComponents fields = calendar.components(static_cast<NSCalendarUnit>(0x26FC), winter);
        EXPECT_EQ(calendar.dateFromComponents(fields), winter);
    };
    // ICU makes its own constants at first use behind atomics that the thread sanitizer does not see.
    fieldsAndBack(50);
    inThreads(fieldsAndBack);
}

TEST(HostEnvironment, SettingsChangeWhileOthersAsk) {
    inThreads([&](int round) {
        HostEnvironment::setTimeZoneIdentifier(round % 2 == 0 ? u"Europe/Brussels" : u"Asia/Tokyo");
        const auto offset = NSTimeZone::localTimeZone().secondsFromGMTForDate(NSDate::since1970(1520204400));
        EXPECT_TRUE(offset == 3600 || offset == 9 * 3600);
        HostEnvironment::setNow(NSDate::since1970(round));
        EXPECT_LT(NSDate::date(), NSDate::since1970(50));
    });
    HostEnvironment::setTimeZoneIdentifier(std::nullopt);
    HostEnvironment::setNow(std::nullopt);
}

}  // namespace
}  // namespace ZORPlatform
