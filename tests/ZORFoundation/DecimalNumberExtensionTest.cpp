// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/DecimalNumberExtension.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>

#include <gtest/gtest.h>

#include <string>

namespace ZORFoundation {
namespace {

using namespace DecimalNumberExtension;
using ZORPlatform::HostEnvironment;
using ZORPlatform::NSLocale;

NSDecimalNumber number(std::u16string_view text) { return NSDecimalNumber::decimalNumberWithString(text); }

NSNumberFormatter formatter(std::u16string_view locale, std::int64_t maximumFractionDigits) {
    NSNumberFormatter result;
    result.setPositiveFormat(u"0.00");
    result.setLocale(NSLocale(locale));
    result.setMaximumFractionDigits(maximumFractionDigits);
    return result;
}

TEST(DecimalNumberExtension, OnlyAmountsAboveZeroAreBigger) {
    EXPECT_TRUE(isBiggerAsZero(number(u"12.30")));
    EXPECT_TRUE(isBiggerAsZero(number(u"1e-128")));
    EXPECT_FALSE(isBiggerAsZero(number(u"0")));
    EXPECT_FALSE(isBiggerAsZero(number(u"-0.01")));
    EXPECT_FALSE(isBiggerAsZero(NSDecimalNumber::notANumber()));
}

TEST(DecimalNumberExtension, NegativeNumberIsNeverPositive) {
    EXPECT_EQ(negativeDecimalNumber(number(u"12.30")), number(u"-12.3"));
    EXPECT_EQ(negativeDecimalNumber(number(u"-5")), number(u"-5"));
    EXPECT_EQ(negativeDecimalNumber(number(u"0")), number(u"0"));
    EXPECT_EQ(negativeDecimalNumber(NSDecimalNumber::notANumber()), NSDecimalNumber::notANumber());
    const std::u16string greatest = std::u16string(38, u'9') + u"e127";
    EXPECT_EQ(negativeDecimalNumber(number(greatest)), number(u"-" + greatest));
}

TEST(DecimalNumberExtension, AmountIsRoundedToTheFormattersFractionDigits) {
    EXPECT_EQ(from(u"1.234", formatter(u"en_US", 2), NSRoundingMode::plain), number(u"1.23"));
    EXPECT_EQ(from(u"1.236", formatter(u"en_US", 2), NSRoundingMode::plain), number(u"1.24"));
    EXPECT_EQ(from(u"1,236", formatter(u"nl_BE", 2), NSRoundingMode::down), number(u"1.23"));
    EXPECT_EQ(from(u"-1.231", formatter(u"en_US", 2), NSRoundingMode::down), number(u"-1.24"));
    EXPECT_EQ(from(u"2.5", formatter(u"en_US", 0), NSRoundingMode::bankers), number(u"2"));
}

TEST(DecimalNumberExtension, AmountIsTakenByItsDecimalDigits) {
    // As a double, 1.005 is below its halfway case.
    EXPECT_EQ(from(u"1.005", formatter(u"en_US", 2), NSRoundingMode::plain), number(u"1.01"));
}

TEST(DecimalNumberExtension, TextThatTheFormatterCannotReadIsZero) {
    for (const std::u16string_view text : {u"", u"abc", u"1,5", u"5 ", u"+5"}) {
        EXPECT_EQ(from(text, formatter(u"en_US", 2), NSRoundingMode::up), number(u"0"));
    }
}

TEST(DecimalNumberExtension, FreshFormatterRoundsToWholeUnits) {
    HostEnvironment::setLocaleIdentifier(u"en_US");
    EXPECT_EQ(from(u"1.5", NSNumberFormatter(), NSRoundingMode::plain), number(u"2"));
    HostEnvironment::setLocaleIdentifier(std::nullopt);
}

TEST(DecimalNumberExtension, LargestScaleDoesNotRound) {
    EXPECT_EQ(from(u"1.23456789", formatter(u"en_US", 32767), NSRoundingMode::up), number(u"1.23456789"));
    EXPECT_EQ(from(u"1.23456789", formatter(u"en_US", 32766), NSRoundingMode::up), number(u"1.23456789"));
}

TEST(DecimalNumberExtensionDeathTest, ScaleAbove16BitsStopsTheProcess) {
    EXPECT_DEATH((void)from(u"1.5", formatter(u"en_US", 32768), NSRoundingMode::plain), "must fit 16 bits");
    EXPECT_DEATH((void)from(u"abc", formatter(u"en_US", std::int64_t{1} << 40), NSRoundingMode::plain),
                 "must fit 16 bits");
}

}  // namespace
}  // namespace ZORFoundation
