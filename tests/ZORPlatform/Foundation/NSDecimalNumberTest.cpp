// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSDecimalNumber.h>

#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>

#include <support/AllocationCount.h>
#include <support/DecimalModel.h>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace ZORPlatform {
namespace {

using support::DecimalModel;

constexpr NSRoundingMode kModes[] = {NSRoundingMode::plain, NSRoundingMode::down, NSRoundingMode::up,
                                     NSRoundingMode::bankers};

NSDecimalNumber number(std::u16string_view text) { return NSDecimalNumber::decimalNumberWithString(text); }

std::u16string reread(std::u16string_view text) { return number(text).stringValue(); }

/// Raises nothing.
constexpr NSDecimalNumberHandler silent(NSRoundingMode mode, std::int16_t scale = NSDecimalNumberHandler::kNoScale) {
    return {mode, scale, false, false, false, false};
}

std::u16string rounded(std::u16string_view text, std::int16_t scale, NSRoundingMode mode) {
    return number(text).decimalNumberByRoundingAccordingToBehavior(silent(mode, scale)).stringValue();
}

std::u16string zeros(std::size_t count) { return std::u16string(count, u'0'); }
std::u16string nines(std::size_t count) { return std::u16string(count, u'9'); }

TEST(NSDecimalNumber, IsAZeroUnlessToldOtherwise) {
    EXPECT_TRUE(NSDecimalNumber().isZero());
    EXPECT_EQ(NSDecimalNumber().stringValue(), u"0");
    EXPECT_EQ(sizeof(NSDecimalNumber), 24U);
}

TEST(NSDecimalNumberReading, TakesTheLongestNumberAndIgnoresTheRest) {
    EXPECT_EQ(reread(u"12.5kg"), u"12.5");
    EXPECT_EQ(reread(u"7.8.9"), u"7.8");
    EXPECT_EQ(reread(u"6."), u"6");
    EXPECT_EQ(reread(u".25"), u"0.25");
    EXPECT_EQ(reread(u"-.25"), u"-0.25");
    EXPECT_EQ(reread(u"+3"), u"3");
    EXPECT_EQ(reread(u"1,5"), u"1");
    EXPECT_EQ(reread(u"12-5"), u"12");
    EXPECT_EQ(reread(u"0012.3400"), u"12.34");
    EXPECT_EQ(reread(std::u16string_view(u"5\0006", 3)), u"5");
}

TEST(NSDecimalNumberReading, TakesExponents) {
    EXPECT_EQ(reread(u"2e3"), u"2000");
    EXPECT_EQ(reread(u"2E-3"), u"0.002");
    EXPECT_EQ(reread(u"2e+3x"), u"2000");
    EXPECT_EQ(reread(u"9e"), u"9");
    EXPECT_EQ(reread(u"9e-"), u"9");
    EXPECT_EQ(reread(u"9e5.5"), u"900000");
    EXPECT_EQ(reread(u"1e127"), u"1" + zeros(127));
    EXPECT_EQ(reread(u"1e-128"), u"0." + zeros(127) + u"1");
    EXPECT_EQ(reread(u"1.5e128"), u"15" + zeros(127));
}

TEST(NSDecimalNumberReading, GivesNotANumberOutsideTheExponents) {
    for (const std::u16string_view text : {u"1e128", u"1e130", u"1e-129", u"1e-130", u"-1e130",
                                           u"1e99999999999999999999", u"1e-99999999999999999999", u"1.5e-128"}) {
        EXPECT_TRUE(number(text).isNotANumber()) << utf8(text);
    }
    EXPECT_TRUE(number(u"1" + zeros(200)).isNotANumber());
    EXPECT_TRUE(number(u"0." + zeros(128) + u"1").isNotANumber());
}

TEST(NSDecimalNumberReading, KeepsZeroWhateverItsExponent) {
    for (const std::u16string_view text : {u"0", u"-0", u"0e999", u"-0.00e-999", u".0"}) {
        EXPECT_EQ(number(text), NSDecimalNumber()) << utf8(text);
    }
    EXPECT_EQ(number(u"0." + zeros(500)), NSDecimalNumber());
}

TEST(NSDecimalNumberReading, GivesNotANumberWithoutADigit) {
    for (const std::u16string_view text : {u"", u" ", u"\t\n", u"abc", u"--3", u"+-3", u"- 3", u"+", u"-", u".", u"-.",
                                           u"e5", u".e5", u"\u0663", u"\u221225", u"NaN", u"\u20AC5", u"\xD800"}) {
        EXPECT_TRUE(number(text).isNotANumber()) << utf8(text);
    }
}

TEST(NSDecimalNumberReading, SkipsLeadingWhiteSpaceAndLineEnds) {
    EXPECT_EQ(reread(u" \t\r\n\u00A0\u202F\u2003-5"), u"-5");
}

TEST(NSDecimalNumberReading, CutsDigitsBeyondThirtyEight) {
    EXPECT_EQ(reread(nines(38)), nines(38));
    EXPECT_EQ(reread(nines(39)), nines(38) + u"0");
    EXPECT_EQ(reread(nines(41) + u".99"), nines(38) + u"000");
    EXPECT_EQ(reread(u"000" + nines(38) + u".9"), nines(38));
    EXPECT_EQ(reread(u"0.0" + nines(40)), u"0.0" + nines(38));
    EXPECT_EQ(reread(u"1" + zeros(37)), u"1" + zeros(37));
    EXPECT_EQ(reread(u"12345678901234567890123456789012345678"), u"12345678901234567890123456789012345678");
    EXPECT_EQ(reread(u"18446744073709551616"), u"18446744073709551616");
    EXPECT_EQ(reread(u"10000000000000000000000000000000000001"), u"10000000000000000000000000000000000001");
}

TEST(NSDecimalNumber, EqualValuesAreEqualHoweverWritten) {
    EXPECT_EQ(number(u"1.50"), number(u"1.5"));
    EXPECT_EQ(number(u"1500"), number(u"1.5e3"));
    EXPECT_EQ(number(u"10e127"), number(u"1.0e1").decimalNumberByMultiplyingBy(number(u"1e127")));
    EXPECT_EQ(NSDecimalNumber::notANumber(), NSDecimalNumber::notANumber());
    EXPECT_NE(NSDecimalNumber::notANumber(), NSDecimalNumber());
    EXPECT_NE(number(u"1.5"), number(u"-1.5"));
}

TEST(NSDecimalNumber, IsMadeOfMantissaExponentAndSign) {
    EXPECT_EQ(NSDecimalNumber::decimalNumberWithMantissa(1230, -2, true), number(u"-12.3"));
    EXPECT_EQ(NSDecimalNumber::decimalNumberWithMantissa(0, 5000, true), NSDecimalNumber());
    EXPECT_TRUE(NSDecimalNumber::decimalNumberWithMantissa(1, 128, false).isNotANumber());
    EXPECT_TRUE(NSDecimalNumber::decimalNumberWithMantissa(1, -129, false).isNotANumber());
    EXPECT_EQ(NSDecimalNumber::decimalNumberWithMantissa(100, -129, false), number(u"1e-127"));
}

TEST(NSDecimalNumber, OrdersByValueWithNotANumberFirst) {
    const std::vector<NSDecimalNumber> ascending = {
        NSDecimalNumber::notANumber(),
        number(nines(38) + u"e127").decimalNumberByMultiplyingBy(number(u"-1")),
        number(u"-10e127"),
        number(u"-1e127"),
        number(u"-1.01"),
        number(u"-1"),
        number(u"-1e-128"),
        number(u"0"),
        number(u"1e-128"),
        number(u"0.999"),
        number(u"1"),
        number(u"1.01"),
        number(u"9.99"),
        number(u"10"),
        number(u"1e38"),
        number(nines(38) + u"e127")};
    for (std::size_t i = 0; i < ascending.size(); ++i) {
        for (std::size_t j = 0; j < ascending.size(); ++j) {
            EXPECT_EQ(ascending[i] <=> ascending[j], i <=> j) << i << " " << j;
        }
    }
}

TEST(NSDecimalNumber, GivesTheNearestDouble) {
    EXPECT_EQ(number(u"0.1").doubleValue(), 0.1);
    EXPECT_EQ(number(u"-1234.56").doubleValue(), -1234.56);
    EXPECT_EQ(number(u"0").doubleValue(), 0.0);
    EXPECT_FALSE(std::signbit(number(u"-0").doubleValue()));
    EXPECT_TRUE(std::isnan(NSDecimalNumber::notANumber().doubleValue()));
    EXPECT_EQ(number(u"1e-128").doubleValue(), 1e-128);
    // Halfway between two doubles, and just above.
    EXPECT_EQ(number(u"9007199254740993").doubleValue(), 9007199254740992.0);
    EXPECT_EQ(number(u"9007199254740993.0000000001").doubleValue(), 9007199254740994.0);
    std::mt19937_64 random(25);
    for (int round = 0; round < 20000; ++round) {
        const std::string text = std::to_string(random()) + std::to_string(random() % 1000000) + "e" +
                                 std::to_string(static_cast<int>(random() % 200) - 110);
        EXPECT_EQ(number(utf16(text)).doubleValue(), std::strtod(text.c_str(), nullptr)) << text;
    }
}

TEST(NSDecimalNumberRounding, FollowsTheTableOfModes) {
    struct Row {
        NSRoundingMode mode;
        std::u16string_view results[5];
    };
    constexpr std::u16string_view kNumbers[] = {u"2.345", u"2.355", u"-2.345", u"-2.341", u"2.341"};
    for (const Row& row : {Row{NSRoundingMode::plain, {u"2.35", u"2.36", u"-2.35", u"-2.34", u"2.34"}},
                           Row{NSRoundingMode::down, {u"2.34", u"2.35", u"-2.35", u"-2.35", u"2.34"}},
                           Row{NSRoundingMode::up, {u"2.35", u"2.36", u"-2.34", u"-2.34", u"2.35"}},
                           Row{NSRoundingMode::bankers, {u"2.34", u"2.36", u"-2.34", u"-2.34", u"2.34"}}}) {
        for (std::size_t i = 0; i < std::size(kNumbers); ++i) {
            EXPECT_EQ(rounded(kNumbers[i], 2, row.mode), row.results[i]);
        }
    }
}

TEST(NSDecimalNumberRounding, JudgesATieByAllDroppedDigits) {
    EXPECT_EQ(rounded(u"2.3450001", 2, NSRoundingMode::bankers), u"2.35");
    EXPECT_EQ(rounded(u"2.3450001", 2, NSRoundingMode::plain), u"2.35");
    EXPECT_EQ(rounded(u"2.345" + zeros(33) + u"1", 2, NSRoundingMode::bankers), u"2.35");
    EXPECT_EQ(rounded(u"0.5", 0, NSRoundingMode::bankers), u"0");
    EXPECT_EQ(rounded(u"1.5", 0, NSRoundingMode::bankers), u"2");
}

TEST(NSDecimalNumberRounding, TakesNegativeScales) {
    EXPECT_EQ(rounded(u"15", -1, NSRoundingMode::plain), u"20");
    EXPECT_EQ(rounded(u"15", -1, NSRoundingMode::bankers), u"20");
    EXPECT_EQ(rounded(u"15", -1, NSRoundingMode::down), u"10");
    EXPECT_EQ(rounded(u"15", -3, NSRoundingMode::plain), u"0");
    EXPECT_EQ(rounded(u"15", -3, NSRoundingMode::up), u"1000");
    EXPECT_EQ(rounded(u"-15", -3, NSRoundingMode::up), u"0");
    EXPECT_EQ(rounded(nines(38), -38, NSRoundingMode::plain), u"1" + zeros(38));
    EXPECT_EQ(rounded(nines(38), -39, NSRoundingMode::plain), u"0");
    EXPECT_EQ(rounded(nines(38), -39, NSRoundingMode::up), u"1" + zeros(39));
    EXPECT_EQ(rounded(u"1", -32768, NSRoundingMode::plain), u"0");
}

TEST(NSDecimalNumberRounding, LeavesNumbersWithFewerDigitsAlone) {
    EXPECT_EQ(rounded(u"2.3", 2, NSRoundingMode::plain), u"2.3");
    EXPECT_EQ(rounded(u"1.23456789", NSDecimalNumberHandler::kNoScale, NSRoundingMode::up), u"1.23456789");
    EXPECT_EQ(rounded(u"1.23456789", 32766, NSRoundingMode::up), u"1.23456789");
    EXPECT_EQ(rounded(u"NaN", 2, NSRoundingMode::up), u"NaN");
    EXPECT_EQ(rounded(u"0", -5, NSRoundingMode::up), u"0");
}

TEST(NSDecimalNumberRounding, RaisesOverflowOnlyWhereToldTo) {
    EXPECT_EQ(rounded(u"1", -32768, NSRoundingMode::up), u"NaN");
    EXPECT_EQ(rounded(u"1", -165, NSRoundingMode::up), u"NaN");
    EXPECT_EQ(rounded(u"1", -164, NSRoundingMode::up), u"1" + zeros(164));
    const NSDecimalNumberHandler raising(NSRoundingMode::up, -165, false, true, false, false);
    EXPECT_THROW((void)number(u"1").decimalNumberByRoundingAccordingToBehavior(raising), NSException);
}

TEST(NSDecimalNumberArithmetic, NegatingByMultiplicationIsExact) {
    const NSDecimalNumber minusOne = NSDecimalNumber::decimalNumberWithMantissa(1, 0, true);
    EXPECT_EQ(number(u"12.30").decimalNumberByMultiplyingBy(minusOne), number(u"-12.3"));
    EXPECT_EQ(number(nines(38) + u"e127").decimalNumberByMultiplyingBy(minusOne), number(u"-" + nines(38) + u"e127"));
    EXPECT_EQ(number(u"0").decimalNumberByMultiplyingBy(minusOne), number(u"0"));
}

TEST(NSDecimalNumberArithmetic, NotANumberTakesEverythingWithIt) {
    const NSDecimalNumber absent = NSDecimalNumber::notANumber();
    const NSDecimalNumber one = number(u"1");
    for (const NSDecimalNumber& result : {absent.decimalNumberByAdding(one), one.decimalNumberBySubtracting(absent),
                                          absent.decimalNumberByMultiplyingBy(NSDecimalNumber()),
                                          NSDecimalNumber().decimalNumberByDividingBy(absent)}) {
        EXPECT_TRUE(result.isNotANumber());
    }
}

TEST(NSDecimalNumberArithmetic, RaisesByNameWhereToldTo) {
    const auto nameOf = [](auto&& work) -> std::u16string {
        try {
            (void)work();
        } catch (const NSException& exception) {
            return exception.name();
        }
        return u"";
    };
    const NSDecimalNumber huge = number(nines(38) + u"e127");
    const NSDecimalNumber tiny = number(u"1e-128");
    const NSDecimalNumberHandler exact(NSRoundingMode::plain, NSDecimalNumberHandler::kNoScale, true, true, true, true);
    EXPECT_EQ(nameOf([&] { return huge.decimalNumberByAdding(huge); }), u"NSDecimalNumberOverflowException");
    EXPECT_EQ(nameOf([&] { return tiny.decimalNumberByMultiplyingBy(tiny); }), u"NSDecimalNumberUnderflowException");
    EXPECT_EQ(nameOf([&] { return tiny.decimalNumberByDividingBy(NSDecimalNumber()); }),
              u"NSDecimalNumberDivideByZeroException");
    EXPECT_EQ(nameOf([&] { return number(u"1").decimalNumberByDividingBy(number(u"3"), exact); }),
              u"NSDecimalNumberExactnessException");
    EXPECT_EQ(nameOf([&] { return number(u"6").decimalNumberByDividingBy(number(u"3"), exact); }), u"");
    EXPECT_EQ(nameOf([&] { return number(u"1").decimalNumberByDividingBy(number(u"3")); }), u"");
}

TEST(NSDecimalNumberArithmetic, IsSilentWhereToldTo) {
    const NSDecimalNumberHandler handler = silent(NSRoundingMode::plain);
    const NSDecimalNumber huge = number(nines(38) + u"e127");
    const NSDecimalNumber tiny = number(u"1e-128");
    EXPECT_TRUE(huge.decimalNumberByAdding(huge, handler).isNotANumber());
    EXPECT_TRUE(huge.decimalNumberByMultiplyingBy(huge, handler).isNotANumber());
    EXPECT_TRUE(huge.decimalNumberByDividingBy(tiny, handler).isNotANumber());
    EXPECT_EQ(tiny.decimalNumberByMultiplyingBy(tiny, handler), NSDecimalNumber());
    EXPECT_TRUE(NSDecimalNumber().decimalNumberByDividingBy(NSDecimalNumber(), handler).isNotANumber());
}

TEST(NSDecimalNumberArithmetic, AppliesTheScaleToTheResult) {
    EXPECT_EQ(number(u"10").decimalNumberByDividingBy(number(u"3"), silent(NSRoundingMode::up, 2)), number(u"3.34"));
    EXPECT_EQ(number(u"1.25").decimalNumberByAdding(number(u"1.1"), silent(NSRoundingMode::bankers, 1)),
              number(u"2.4"));
}

/// Numbers of every size, many of them with patterns that make ties, carries and cancellations.
NSDecimalNumber randomNumber(std::mt19937_64& random) {
    std::u16string text = random() % 2 == 0 ? u"-" : u"";
    const std::size_t digits = 1 + random() % 38;
    const std::uint64_t style = random() % 4;
    for (std::size_t i = 0; i < digits; ++i) {
        const std::uint64_t digit = style == 0 ? 9 : style == 1 ? (i == 0 ? 1 : 0) : style == 2 ? 5 : random() % 10;
        text.push_back(static_cast<char16_t>(u'0' + (random() % 16 == 0 ? random() % 10 : digit)));
    }
    const int span = random() % 2 == 0 ? 20 : 128;
    const int exponent = static_cast<int>(random() % static_cast<unsigned>(2 * span)) - span;
    return number(text + u"e" + utf16(std::to_string(exponent)));
}

std::u16string textOf(const std::optional<DecimalModel>& model) { return model ? model->text() : u"NaN"; }

TEST(NSDecimalNumberArithmetic, AgreesWithDigitByDigitArithmetic) {
    std::mt19937_64 random(38);
    for (int round = 0; round < 4000; ++round) {
        const NSDecimalNumber left = randomNumber(random);
        const NSDecimalNumber right = randomNumber(random);
        const NSRoundingMode mode = kModes[random() % 4];
        const NSDecimalNumberHandler handler = silent(mode);
        const DecimalModel first = DecimalModel::of(left);
        const DecimalModel second = DecimalModel::of(right);
        SCOPED_TRACE(utf8(left.stringValue() + u" and " + right.stringValue()));
        EXPECT_EQ(left.decimalNumberByAdding(right, handler).stringValue(), textOf(first.plus(second).fitted(mode)));
        EXPECT_EQ(left.decimalNumberBySubtracting(right, handler).stringValue(),
                  textOf(first.plus(second.negated()).fitted(mode)));
        EXPECT_EQ(left.decimalNumberByMultiplyingBy(right, handler).stringValue(),
                  textOf(first.times(second).fitted(mode)));
        if (!right.isZero() && round % 8 == 0) {
            EXPECT_EQ(left.decimalNumberByDividingBy(right, handler).stringValue(),
                      textOf(first.dividedBy(second).fitted(mode)));
        }
        const int scale = static_cast<int>(random() % 300) - 170;
        EXPECT_EQ(left.decimalNumberByRoundingAccordingToBehavior(silent(mode, static_cast<std::int16_t>(scale)))
                      .stringValue(),
                  textOf(first.rounded(scale, mode).fitted(mode)));
        EXPECT_EQ(left <=> right, first.comparedWith(second) <=> 0);
        EXPECT_EQ(number(left.stringValue()), left);
    }
}

TEST(NSDecimalNumber, CalculatesWithoutAllocating) {
    const support::AllocationCount allocations;
    const NSDecimalNumber left = number(u"-98765432109876543210.123456789");
    const NSDecimalNumber right = number(u"77.7");
    const NSDecimalNumber result = left.decimalNumberByAdding(right)
                                       .decimalNumberByMultiplyingBy(right)
                                       .decimalNumberByDividingBy(left)
                                       .decimalNumberByRoundingAccordingToBehavior(silent(NSRoundingMode::plain, 2));
    EXPECT_GT(result.doubleValue(), 0);
    EXPECT_EQ(allocations.count(), 0U);
}

}  // namespace
}  // namespace ZORPlatform
