// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORNumberFormatters.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>

#include <gtest/gtest.h>

#include <support/AllocationCount.h>
#include <string>

namespace ZORFoundation {
namespace {

using namespace ZORNumberFormatters;
using ZORPlatform::NSDecimalNumber;

const NSDecimalNumber kAmount = NSDecimalNumber::decimalNumberWithString(u"-1234567.89125");

TEST(ZORNumberFormatters, ThousandsAreSeparatedByNoBreakSpacesInEveryLocale) {
    for (const std::u16string_view locale : {u"nl_BE", u"fr_BE", u"de_BE", u"fr_FR"}) {
        EXPECT_EQ(zor_thousandsSeparatedAmountFormatterWithLocale(NSLocale(locale)).stringFromNumber(kAmount),
                  u"-1\u00A0234\u00A0567,89");
    }
    EXPECT_EQ(zor_thousandsSeparatedAmountFormatterWithLocale(NSLocale(u"en_US")).stringFromNumber(kAmount),
              u"-1\u00A0234\u00A0567.89");
}

TEST(ZORNumberFormatters, LongFormHasFourDecimalsRoundedHalfToEven) {
    EXPECT_EQ(zor_thousandsSeparatedAmountLongFormatterWithLocale(NSLocale(u"nl_BE")).stringFromNumber(kAmount),
              u"-1\u00A0234\u00A0567,8912");
}

TEST(ZORNumberFormatters, TwoDecimalsFormHasNoGroups) {
    const NSNumberFormatter formatter = zor_twoDecimalsAmountFormatterWithLocale(NSLocale(u"nl_BE"));
    EXPECT_EQ(formatter.stringFromNumber(kAmount), u"-1234567,89");
    EXPECT_EQ(formatter.groupingSize(), 0);
}

TEST(ZORNumberFormatters, FactoriesSetPatternGroupingAndLocale) {
    const NSLocale locale(u"de_BE");
    const NSNumberFormatter formatter = zor_thousandsSeparatedAmountLongFormatterWithLocale(locale);
    EXPECT_EQ(formatter.positiveFormat(), u"###,###,##0.0000");
    EXPECT_EQ(formatter.groupingSize(), 3);
    EXPECT_EQ(formatter.groupingSeparator(), u"\u00A0");
    EXPECT_EQ(formatter.locale(), locale);
    EXPECT_EQ(formatter.maximumFractionDigits(), 4);
    EXPECT_EQ(zor_thousandsSeparatedAmountFormatterWithLocale(locale).positiveFormat(), u"###,###,##0.00");
    EXPECT_EQ(zor_twoDecimalsAmountFormatterWithLocale(locale).positiveFormat(), u"########0.00");
}

TEST(ZORNumberFormatters, EachCallGivesAFormatterOfItsOwn) {
    const NSLocale locale(u"nl_BE");
    NSNumberFormatter changed = zor_thousandsSeparatedAmountFormatterWithLocale(locale);
    changed.setMaximumFractionDigits(0);
    changed.setGroupingSeparator(u"_");
    EXPECT_EQ(zor_thousandsSeparatedAmountFormatterWithLocale(locale).stringFromNumber(kAmount),
              u"-1\u00A0234\u00A0567,89");
}

TEST(ZORNumberFormatters, ANewFormatterAllocatesOnlyItsResult) {
    const NSLocale locale(u"nl_BE");
    (void)zor_thousandsSeparatedAmountFormatterWithLocale(locale).stringFromNumber(kAmount);
    const support::AllocationCount allocations;
    EXPECT_EQ(zor_thousandsSeparatedAmountFormatterWithLocale(locale).stringFromNumber(kAmount).size(), 13U);
    EXPECT_EQ(allocations.count(), 1U);
}

}  // namespace
}  // namespace ZORFoundation
