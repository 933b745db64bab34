// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSNumberFormatter.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace ZORPlatform {
namespace {

TEST(NSNumberFormatter, OneIsReadFromSeveralThreads) {
    NSNumberFormatter dutch;
    dutch.setPositiveFormat(u"#,##0.00");
    dutch.setLocale(NSLocale(u"nl_BE"));
    NSNumberFormatter arabic = dutch;
    arabic.setLocale(NSLocale(u"ar_EG"));
    const NSDecimalNumber amount = NSDecimalNumber::decimalNumberWithString(u"1234.5");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                EXPECT_EQ(dutch.stringFromNumber(amount), u"1.234,50");
                EXPECT_EQ(dutch.numberFromString(u"1.234,50"), amount);
                EXPECT_EQ(arabic.stringFromNumber(amount), u"\u0661\u066C\u0662\u0663\u0664\u066B\u0665\u0660");
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace ZORPlatform
