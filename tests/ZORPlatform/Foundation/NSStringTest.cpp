// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSString.h>

#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace ZORPlatform {
namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int32_t kLargest32 = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kSmallest32 = std::numeric_limits<std::int32_t>::min();

struct Row {
    std::u16string text;
    std::int64_t wide;
    std::int32_t narrow;
};

void expectRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        // A vector has no terminator, so the address sanitizer sees a read behind the text.
        const std::vector<char16_t> exact(row.text.begin(), row.text.end());
        const std::u16string_view text(exact.data(), exact.size());
        EXPECT_EQ(longLongValue(text), row.wide);
        EXPECT_EQ(intValue(text), row.narrow);
    }
}

TEST(NSString, ANumberIsReadUpToTheFirstUnitThatIsNoAsciiDigit) {
    expectRows({{u"45", 45, 45},
                {u"-7x", -7, -7},
                {u"0x1F", 0, 0},
                {u"1.9", 1, 1},
                {u"12 34", 12, 12},
                {u"1e5", 1, 1},
                {u"000000000000000000000000000000012", 12, 12},
                {std::u16string(u"7\0008", 3), 7, 7}});
}

TEST(NSString, ATextWithoutDigitsGivesZero) {
    expectRows({{u"", 0, 0},
                {u" ", 0, 0},
                {u"+", 0, 0},
                {u"-", 0, 0},
                {u"x1", 0, 0},
                {u"\u0663", 0, 0},
                {u"\uFF11", 0, 0},
                {{char16_t{0xD800}}, 0, 0}});
}

TEST(NSString, OneSignIsTakenAndDigitsMustFollowItAtOnce) {
    expectRows({{u"+8", 8, 8}, {u"-8", -8, -8}, {u"--8", 0, 0}, {u"+-8", 0, 0}, {u"- 8", 0, 0}, {u"-\u00A08", 0, 0}});
}

TEST(NSString, LeadingWhiteSpaceIsSkipped) {
    expectRows({{u"\u00A045", 45, 45}, {u"\n\t-7x", -7, -7}, {u" \u2003\u200B\u3000+1", 1, 1}});
}

TEST(NSString, NumbersSkipTheirOwnSetOfWhiteSpace) {
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const bool skipped =
            unit <= 0x20 || (unit >= 0x7F && unit <= 0xA0) || (unit >= 0x2000 && unit <= 0x200B) || unit == 0x3000;
        const bool isDigit = unit >= u'0' && unit <= u'9';
        const std::u16string text{static_cast<char16_t>(unit), u'5'};
        const std::int64_t sign = unit == u'-' ? -1 : 1;
        const std::int64_t expected =
            isDigit ? (unit - u'0') * 10 + 5 : (skipped || unit == u'+' || unit == u'-' ? sign * 5 : 0);
        ASSERT_EQ(longLongValue(text), expected) << std::hex << unit;
    }
}

TEST(NSString, ValuesOutOfRangeSaturate) {
    expectRows({{u"2147483647", kLargest32, kLargest32},
                {u"2147483648", 2147483648, kLargest32},
                {u"-2147483648", kSmallest32, kSmallest32},
                {u"-2147483649", -2147483649, kSmallest32},
                {u"4294967296", 4294967296, kLargest32},
                {u"9223372036854775807", kLargest, kLargest32},
                {u"9223372036854775808", kLargest, kLargest32},
                {u"-9223372036854775808", kSmallest, kSmallest32},
                {u"-9223372036854775809", kSmallest, kSmallest32},
                {u"92233720368547758070", kLargest, kLargest32},
                {std::u16string(1'000'000, u'9'), kLargest, kLargest32},
                {u"-" + std::u16string(1'000'000, u'9'), kSmallest, kSmallest32}});
}

TEST(NSString, DecimalTextHasAMinusSignAndNoGrouping) {
    EXPECT_EQ(decimalText(0), u"0");
    EXPECT_EQ(decimalText(-5), u"-5");
    EXPECT_EQ(decimalText(1234567), u"1234567");
    EXPECT_EQ(decimalText(kLargest), u"9223372036854775807");
    EXPECT_EQ(decimalText(kSmallest), u"-9223372036854775808");
}

TEST(NSString, BoolValueReadsOneUnitBehindWhiteSpaceSignAndZeros) {
    for (const std::u16string_view text : {u"1", u"9", u"Y", u"y", u"T", u"t", u"yes", u"true", u" \u00A0\u2003\u200B1",
                                           u"\t\n\r\u0085\u2028Y", u"+1", u"-1", u"0007", u"+00y", u"-0t", u"1abc"}) {
        EXPECT_TRUE(boolValue(text)) << ::testing::PrintToString(text);
    }
    for (const std::u16string_view text : {u"", u" ", u"+", u"0", u"000", u"N", u"no", u"false", u"on", u"+-1", u"- 1",
                                           u"0.5", u"0 1", u"x1", u"\u0001y", u"\u0661", u"\u0177"}) {
        EXPECT_FALSE(boolValue(text)) << ::testing::PrintToString(text);
    }
}

TEST(NSString, AWholeIntegerIsTheWholeTextOrNothing) {
    EXPECT_EQ(wholeInteger(u"0"), 0);
    EXPECT_EQ(wholeInteger(u"-0"), 0);
    EXPECT_EQ(wholeInteger(u"+007"), 7);
    EXPECT_EQ(wholeInteger(u"-45"), -45);
    EXPECT_EQ(wholeInteger(u"9223372036854775807"), kLargest);
    EXPECT_EQ(wholeInteger(u"-9223372036854775808"), kSmallest);
    for (const std::u16string_view text : {u"", u"+", u"-", u"--1", u"+-1", u" 1", u"1 ", u"1.0", u"1a", u"\u0661",
                                           u"9223372036854775808", u"-9223372036854775809", u"99999999999999999999"}) {
        EXPECT_EQ(wholeInteger(text), std::nullopt) << utf8(text);
    }
}

}  // namespace
}  // namespace ZORPlatform
