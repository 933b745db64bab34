// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORAmountFormatter.h>

#include <gtest/gtest.h>

#include <support/AllocationCount.h>
#include <optional>
#include <string>

namespace ZORFoundation {
namespace {

std::u16string amount(std::u16string_view text) {
    const std::optional<NSDecimalNumber> number = ZORAmountFormatter::amountFromString(text);
    return number ? number->stringValue() : u"absent";
}

TEST(ZORAmountFormatter, AbsentTextGivesAnAbsentAmount) {
    EXPECT_EQ(ZORAmountFormatter::amountFromString(std::nullopt), std::nullopt);
}

TEST(ZORAmountFormatter, ReadsCommaAndPointAsTheDecimalMark) {
    EXPECT_EQ(amount(u"1234,56"), u"1234.56");
    EXPECT_EQ(amount(u"1234.56"), u"1234.56");
    EXPECT_EQ(amount(u"-12,50"), u"-12.5");
}

TEST(ZORAmountFormatter, LeavesOutSpacesWhereverTheyStand) {
    EXPECT_EQ(amount(u"1 000,5"), u"1000.5");
    EXPECT_EQ(amount(u"1\u00A0000,5"), u"1000.5");
    EXPECT_EQ(amount(u" - 1\u00A0 2 , 3 4 "), u"-12.34");
}

TEST(ZORAmountFormatter, ReadsTheLeadingNumberWhereGroupingIsNoSpace) {
    EXPECT_EQ(amount(u"1.234,56"), u"1.234");
    EXPECT_EQ(amount(u"12,5 EUR"), u"12.5");
    EXPECT_EQ(amount(u"1\u202F000,5"), u"1");
}

TEST(ZORAmountFormatter, TextThatDoesNotBeginWithANumberIsNotANumber) {
    for (const std::u16string_view text : {u"", u"  ", u"abc", u"\u20AC 5", u"EUR 5", u",", u"-", u"--5", u"\u0665"}) {
        EXPECT_EQ(amount(text), u"NaN");
    }
}

TEST(ZORAmountFormatter, NeverPassesThroughBinaryFloatingPoint) {
    EXPECT_EQ(amount(u"12345678901234567890123456789012345,678"), u"12345678901234567890123456789012345.678");
    EXPECT_EQ(amount(u"0,1"), u"0.1");
}

TEST(ZORAmountFormatter, AllocatesNothing) {
    const std::u16string text = std::u16string(500, u' ') + u"1\u00A0234\u00A0567,89" + std::u16string(500, u' ');
    const support::AllocationCount allocations;
    EXPECT_FALSE(ZORAmountFormatter::amountFromString(text)->isNotANumber());
    EXPECT_EQ(allocations.count(), 0U);
}

}  // namespace
}  // namespace ZORFoundation
