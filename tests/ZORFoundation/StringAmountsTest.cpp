// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/StringAmounts.h>

#include <gtest/gtest.h>

#include <support/AllocationCount.h>
#include <algorithm>
#include <memory>
#include <random>
#include <regex>
#include <string>

namespace ZORFoundation {
namespace {

using StringExtension::explainInputAmount;
using StringExtension::isValidInputAmount;

TEST(InputAmount, AcceptsWhatMayStillBecomeAnAmount) {
    for (const std::u16string_view text :
         {u"", u"   ", u"\t\n\v\f\r ", u"123456789", u"0", u"000000000", u"12,5", u"12.50 ", u",5", u"12,", u".", u", ",
          u" 12", u"\t12", u" 12,5 ", u"12,50\n", u"123456789,12 \t\r\n"}) {
        EXPECT_TRUE(isValidInputAmount(text));
        EXPECT_EQ(explainInputAmount(text), Explanation());
    }
}

TEST(InputAmount, RefusesWhiteSpaceBehindIntegerDigits) {
    EXPECT_EQ(explainInputAmount(u"12 "), (Explanation{BrokenRule::unexpectedCharacter, 2, 2, 0, 0}));
    EXPECT_EQ(explainInputAmount(u"12 ,5"), (Explanation{BrokenRule::unexpectedCharacter, 2, 2, 0, 0}));
}

TEST(InputAmount, RefusesTooManyDigits) {
    EXPECT_EQ(explainInputAmount(u" 1234567890"), (Explanation{BrokenRule::integerDigits, 10, 10, 10, 9}));
    EXPECT_EQ(explainInputAmount(u"0000000000,1x"), (Explanation{BrokenRule::integerDigits, 9, 9, 10, 9}));
    EXPECT_EQ(explainInputAmount(u"12,3456"), (Explanation{BrokenRule::decimals, 5, 5, 4, 2}));
}

TEST(InputAmount, RefusesOtherCharacters) {
    EXPECT_EQ(explainInputAmount(u"-1"), (Explanation{BrokenRule::unexpectedCharacter, 0, 0, 0, 0}));
    EXPECT_EQ(explainInputAmount(u"+1"), (Explanation{BrokenRule::unexpectedCharacter, 0, 0, 0, 0}));
    EXPECT_EQ(explainInputAmount(u"1.2.3"), (Explanation{BrokenRule::unexpectedCharacter, 3, 3, 0, 0}));
    EXPECT_EQ(explainInputAmount(u"12, 5"), (Explanation{BrokenRule::unexpectedCharacter, 4, 4, 0, 0}));
    EXPECT_EQ(explainInputAmount(u"1,-"), (Explanation{BrokenRule::unexpectedCharacter, 2, 2, 0, 0}));
    EXPECT_EQ(explainInputAmount(std::u16string_view(u"12\0", 3)),
              (Explanation{BrokenRule::unexpectedCharacter, 2, 2, 0, 0}));
}

TEST(InputAmount, RefusesUnitsThatAreNotAsciiBeforeAnythingElse) {
    EXPECT_EQ(explainInputAmount(u"12345678901\u20AC"), (Explanation{BrokenRule::unexpectedCharacter, 11, 11, 0, 0}));
    EXPECT_EQ(explainInputAmount(u"\u00A01"), (Explanation{BrokenRule::unexpectedCharacter, 0, 0, 0, 0}));
    EXPECT_EQ(explainInputAmount(u"5\r\n\u0665"), (Explanation{BrokenRule::unexpectedCharacter, 3, 2, 0, 0}));
    EXPECT_FALSE(isValidInputAmount(u"5\xD800"));
}

TEST(InputAmount, AgreesWithARegularExpression) {
    const std::regex form("[ \\t\\n\\v\\f\\r]*([0-9]{1,9}|[0-9]{0,9}[,.][0-9]{0,2}[ \\t\\n\\v\\f\\r]*)?");
    constexpr std::u16string_view kUnits = u"0123456789,.,.  \t\nx\u00E9";
    std::mt19937 random(9);
    for (int round = 0; round < 20000; ++round) {
        const std::size_t size = random() % 16;
        const auto exact = std::make_unique<char16_t[]>(size);
        // Mostly digits, so that the limits are reached.
        std::generate_n(exact.get(), size, [&] { return kUnits[random() % (random() % 3 == 0 ? kUnits.size() : 11)]; });
        const std::u16string_view text(exact.get(), size);
        const bool isAscii = std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
        const bool expected = isAscii && std::regex_match(std::string(text.begin(), text.end()), form);
        ASSERT_EQ(isValidInputAmount(text), expected) << std::string(text.begin(), text.end());
        ASSERT_EQ(explainInputAmount(text).isValid(), expected);
        ASSERT_LE(explainInputAmount(text).position, size);
    }
}

TEST(InputAmount, AllocatesNothing) {
    const std::u16string longText(5000, u'7');
    const support::AllocationCount allocations;
    EXPECT_FALSE(isValidInputAmount(longText));
    EXPECT_EQ(explainInputAmount(longText).found, 5000U);
    EXPECT_EQ(allocations.count(), 0U);
}

}  // namespace
}  // namespace ZORFoundation
