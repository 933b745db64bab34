// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/StringPatterns.h>

#include <ZORPlatform/Foundation/NSException.h>
#include <gtest/gtest.h>
#include <support/AllocationCount.h>
#include <support/ExactText.h>
#include <support/PatternModel.h>

#include <random>

namespace ZORFoundation {
namespace {

using StringExtension::formatTextWithPattern;
using StringExtension::zor_patternMatches;
using Texts = std::vector<std::u16string>;

TEST(FormatTextWithPattern, FillsSlotsAndKeepsLiterals) {
    EXPECT_EQ(formatTextWithPattern(u"12 34 5", u"XXXX-XXXX", u"X"), u"1234-5");
    EXPECT_EQ(formatTextWithPattern(u"123456789", u"XXXX-XXXX", u"X"), u"1234-5678");
    EXPECT_EQ(formatTextWithPattern(u"12", u"+X (X) X", u"X"), u"+1 (2");
}

TEST(FormatTextWithPattern, NoLiteralFollowsTheLastCharacterTyped) {
    EXPECT_EQ(formatTextWithPattern(u"1234", u"XXXX-XXXX", u"X"), u"1234");
    EXPECT_EQ(formatTextWithPattern(u"12", u"XX--", u"X"), u"12");
}

TEST(FormatTextWithPattern, APatternWithoutSlotsComesBackWhole) {
    EXPECT_EQ(formatTextWithPattern(u"12", u"--", u"X"), u"--");
    EXPECT_EQ(formatTextWithPattern(u"12", u"XX", u""), u"XX");
    EXPECT_EQ(formatTextWithPattern(u"12", u"XX", u"XX"), u"XX");
}

TEST(FormatTextWithPattern, TextOfNothingOrAnEmptyPatternChangesNothing) {
    EXPECT_EQ(formatTextWithPattern(u"", u"XXXX", u"X"), u"");
    EXPECT_EQ(formatTextWithPattern(u"   ", u"XXXX", u"X"), u"   ");
    EXPECT_EQ(formatTextWithPattern(u"1 2 3", u"", u"X"), u"1 2 3");
}

TEST(FormatTextWithPattern, ASlotTakesOneUserPerceivedCharacter) {
    EXPECT_EQ(formatTextWithPattern(u"\U0001F44D\U0001F3FDe\u03011", u"X-X-X", u"X"),
              u"\U0001F44D\U0001F3FD-e\u0301-1");
    EXPECT_EQ(formatTextWithPattern(u"1\r\n2", u"X-X-X", u"X"), u"1-\r\n-2");
}

TEST(FormatTextWithPattern, TheFormattingCharacterIsComparedCanonically) {
    EXPECT_EQ(formatTextWithPattern(u"12", u"e\u0301-\u00E9", u"\u00E9"), u"1-2");
    EXPECT_EQ(formatTextWithPattern(u"12", u"\u212A-K", u"K"), u"1-2");
    EXPECT_EQ(formatTextWithPattern(u"12", u"X\u0301-X", u"X"), u"X\u0301-1");
}

TEST(FormatTextWithPattern, WhatASpaceHeldApartBecomesOneCharacter) {
    EXPECT_EQ(formatTextWithPattern(u"e  \u0301a", u"X-X", u"X"), u"e\u0301-a");
    EXPECT_EQ(formatTextWithPattern(u"\r \n1", u"X-X", u"X"), u"\r\n-1");
    EXPECT_EQ(formatTextWithPattern(u"\u0600 1 2", u"X-X", u"X"), u"\u06001-2");
    EXPECT_EQ(formatTextWithPattern(u" \u0301", u"X-X", u"X"), u"\u0301");
}

TEST(FormatTextWithPattern, SkippingSpacesIsTheSameAsRemovingThem) {
    constexpr std::u16string_view kUnits =
        u"  aX1-\r\n\u0301\u200D\u0600\u00E9\u1100\u1161\u0903\U0001F1E7\U0001F1EA\U0001F44D\U0001F3FD";
    std::mt19937 random(27);
    const auto text = [&](std::size_t most) {
        std::u16string made(random() % most, u'\0');
        for (char16_t& unit : made) unit = kUnits[random() % kUnits.size()];
        return made;
    };
    for (int round = 0; round < 30000; ++round) {
        const std::u16string typed = text(12);
        const std::u16string pattern = text(8);
        ASSERT_EQ(formatTextWithPattern(typed, pattern, u"X"), support::formattedPlainly(typed, pattern, u"X"))
            << ::testing::PrintToString(typed) << ::testing::PrintToString(pattern);
    }
}

TEST(FormatTextWithPattern, CharactersOfOneUnitAreLaidOutAsAnyOthers) {
    constexpr std::u16string_view kUnits = u"  0123456789aX-XXXX\u00E9\u0301";
    std::mt19937 random(28);
    const auto text = [&](std::size_t most) {
        // Few have a combining mark, so that most go through whole.
        const std::size_t choice = kUnits.size() - (random() % 4 == 0 ? 0 : 1);
        std::u16string made(random() % most, u'\0');
        for (char16_t& unit : made) unit = kUnits[random() % choice];
        return made;
    };
    for (int round = 0; round < 30000; ++round) {
        const std::u16string typed = text(12);
        const std::u16string pattern = text(12);
        for (const std::u16string_view mark : {u"X", u" ", u"\u00E9", u"XX"}) {
            ASSERT_EQ(formatTextWithPattern(support::ExactText(typed).view(), support::ExactText(pattern).view(), mark),
                      support::formattedPlainly(typed, pattern, mark))
                << ::testing::PrintToString(typed) << ::testing::PrintToString(pattern);
        }
    }
}

TEST(FormatTextWithPattern, TheResultIsOneAllocation) {
    for (const std::u16string_view text : {u"1234 5678 9012", u"1\U0001F44D34 e\u0301\u20AC78"}) {
        const support::AllocationCount allocations;
        (void)formatTextWithPattern(text, u"XXXX-XXXX-XXXX-XXXX", u"X");
        EXPECT_EQ(allocations.count(), 1U);
    }
}

TEST(PatternMatches, CollectsCaptureGroupsInOrder) {
    EXPECT_EQ(zor_patternMatches(u"a1b22c333", u"(\\d+)"), (Texts{u"1", u"22", u"333"}));
    EXPECT_EQ(zor_patternMatches(u"k=v;x=y", u"(\\w+)=(\\w+)"), (Texts{u"k", u"v", u"x", u"y"}));
    EXPECT_EQ(zor_patternMatches(u"abab", u"((a)b)"), (Texts{u"ab", u"a", u"ab", u"a"}));
    EXPECT_EQ(zor_patternMatches(u"ab", u"(x*)"), (Texts{u"", u"", u""}));
}

TEST(PatternMatches, NothingFoundIsAnEmptyList) {
    EXPECT_EQ(zor_patternMatches(u"", u"(a)"), Texts{});
    EXPECT_EQ(zor_patternMatches(u"abc", u"(z)"), Texts{});
    EXPECT_EQ(zor_patternMatches(u"abc", u"z"), Texts{});
}

TEST(PatternMatches, APatternThatDoesNotCompileGivesAnEmptyList) {
    EXPECT_EQ(zor_patternMatches(u"abc", u"("), Texts{});
    EXPECT_EQ(zor_patternMatches(u"abc", u"[a-z"), Texts{});
    EXPECT_EQ(zor_patternMatches(u"abc", u""), Texts{});
}

TEST(PatternMatches, ASearchThatIsGivenUpGivesAnEmptyList) {
    EXPECT_EQ(zor_patternMatches(u"ab " + std::u16string(60, u'a') + u"x", u"(ab |(?:a+)+$)"), Texts{});
}

TEST(PatternMatches, AGroupThatTakesNoPartRaisesTheRangeException) {
    try {
        (void)zor_patternMatches(u"ab", u"(a)|(b)");
        FAIL();
    } catch (const ZORPlatform::NSException& exception) {
        EXPECT_EQ(exception.name(), u"NSRangeException");
    }
}

TEST(PatternMatchesDeathTest, AMatchOfAPatternWithoutGroupsStopsTheProcess) {
    EXPECT_DEATH((void)zor_patternMatches(u"abc", u"b"), "zor_patternMatches\\(for:\\).*capture group");
}

}  // namespace
}  // namespace ZORFoundation
