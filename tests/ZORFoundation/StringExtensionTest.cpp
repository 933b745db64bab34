// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/StringExtension.h>

#include <ZORPlatform/Foundation/NSException.h>
#include <gtest/gtest.h>
#include <support/AllocationCount.h>

#include <limits>

namespace ZORFoundation {
namespace {

using namespace StringExtension;

constexpr std::u16string_view kFamily = u"\U0001F468\u200D\U0001F469\u200D\U0001F467";
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

TEST(StringExtension, ReplaceChangesItsReceiver) {
    std::u16string text = u"aXbXc";
    replace(text, u"X", u"-");
    EXPECT_EQ(text, u"a-b-c");
    replace(text, u"B", u"!");
    EXPECT_EQ(text, u"a-b-c");
    replace(text, u"-", u"--");
    EXPECT_EQ(text, u"a--b--c");
    replace(text, u"", u"!");
    EXPECT_EQ(text, u"a--b--c");
}

TEST(StringExtension, ReplaceIsLiteral) {
    std::u16string text = u"e\u0301";
    replace(text, u"\u00E9", u"x");
    EXPECT_EQ(text, u"e\u0301");
    text = u"a\r\nb";
    replace(text, u"\n", u"|");
    EXPECT_EQ(text, u"a\r|b");
}

TEST(StringExtension, LengthCountsCharacters) {
    EXPECT_EQ(length(u""), 0);
    EXPECT_EQ(length(u"he\u0301llo"), 5);
    EXPECT_EQ(length(u"\r\n"), 1);
    EXPECT_EQ(length(kFamily), 1);
    EXPECT_EQ(length(u"\U0001F1E7\U0001F1EA\U0001F1EB"), 2);
}

TEST(StringExtension, SubstringsAreCutBetweenCharacters) {
    EXPECT_EQ(substringWithRange(u"h\u00E9llo", {1, 3}), u"\u00E9l");
    EXPECT_EQ(subscript(u"he\u0301llo", Range{1, 3}), u"e\u0301l");
    EXPECT_EQ(substringToIndex(u"e\u0301x", 1), u"e\u0301");
    EXPECT_EQ(substringFromIndex(u"e\u0301x", 1), u"x");
    EXPECT_EQ(subscript(u"a\r\nb", 1), u"\r\n");
    EXPECT_EQ(subscript(std::u16string(kFamily) + u"!", 0), kFamily);
}

TEST(StringExtension, TheWholeTextAndNoneOfItAreSubstrings) {
    EXPECT_EQ(substringToIndex(u"", 0), u"");
    EXPECT_EQ(substringFromIndex(u"", 0), u"");
    EXPECT_EQ(substringWithRange(u"", {0, 0}), u"");
    EXPECT_EQ(substringToIndex(u"abc", 3), u"abc");
    EXPECT_EQ(substringFromIndex(u"abc", 3), u"");
    EXPECT_EQ(substringWithRange(u"abc", {3, 3}), u"");
    EXPECT_EQ(substringWithRange(u"abc", {0, 3}), u"abc");
}

TEST(StringExtension, CharactersAndUnitsDisagreeBehindAnEmoji) {
    constexpr std::u16string_view kText = u"\U0001F600abc";
    EXPECT_EQ(substringWithRange(kText, {1, 2}), u"a");
    EXPECT_EQ(replaceCharactersInRange(kText, {1, 2}, u"X"), u"\xD83DXabc");
    EXPECT_EQ(replaceCharactersInRange(kText, {2, 3}, u"X"), u"\U0001F600Xbc");
}

TEST(StringExtensionDeathTest, PositionsOutsideTheTextStopTheProcess) {
    for (const std::int64_t index : {std::int64_t{-1}, std::int64_t{3}, kLargest, kSmallest}) {
        EXPECT_DEATH((void)substringToIndex(u"ab", index), "^substringToIndex: ");
        EXPECT_DEATH((void)substringFromIndex(u"ab", index), "^substringFromIndex: ");
        EXPECT_DEATH((void)subscript(u"ab", index), "^subscript: ");
        EXPECT_DEATH((void)substringWithRange(u"ab", {0, index}), "^substringWithRange: ");
        EXPECT_DEATH((void)substringWithRange(u"ab", {index, index}), "^substringWithRange: ");
    }
    EXPECT_DEATH((void)subscript(u"ab", 2), "^subscript: ");
    EXPECT_DEATH((void)subscript(u"", 0), "^subscript: ");
}

TEST(StringExtensionDeathTest, BoundsOutOfOrderStopTheProcess) {
    EXPECT_DEATH((void)substringWithRange(u"ab", {2, 1}), "^substringWithRange: ");
    EXPECT_DEATH((void)substringWithRange(u"ab", {1, kSmallest}), "^substringWithRange: ");
    EXPECT_DEATH((void)subscript(u"ab", Range{2, 1}), "^subscript: ");
    EXPECT_DEATH((void)substringWithRange(u"ab", {kSmallest, kLargest}), "^substringWithRange: ");
}

TEST(StringExtension, ReplacesARangeOfUnits) {
    EXPECT_EQ(replaceCharactersInRange(u"abc", {0, 1}, u"XY"), u"XYbc");
    EXPECT_EQ(replaceCharactersInRange(u"abc", {1, 1}, u"X"), u"aXbc");
    EXPECT_EQ(replaceCharactersInRange(u"abc", {0, 3}, u""), u"");
    EXPECT_EQ(replaceCharactersInRange(u"abc", {3, 3}, u"d"), u"abcd");
    EXPECT_EQ(replaceCharactersInRange(u"", {0, 0}, u""), u"");
}

TEST(StringExtension, ARangeOutsideTheTextRaisesTheRangeException) {
    for (const Range range : {Range{0, 4}, Range{4, 4}, Range{-1, 1}, Range{2, 1}, Range{kLargest, kLargest},
                              Range{kSmallest, kLargest}, Range{1, kSmallest}}) {
        try {
            (void)replaceCharactersInRange(u"abc", range, u"x");
            FAIL() << range.lower << ", " << range.upper;
        } catch (const ZORPlatform::NSException& exception) {
            EXPECT_EQ(exception.name(), u"NSRangeException");
        }
    }
}

TEST(StringExtensionDeathTest, AnAbsentReplacementStopsTheProcessWhateverTheRange) {
    EXPECT_DEATH((void)replaceCharactersInRange(u"abc", {0, 1}, std::nullopt), "^replaceCharactersInRange.*present");
    EXPECT_DEATH((void)replaceCharactersInRange(u"abc", {0, 9}, std::nullopt), "^replaceCharactersInRange.*present");
}

TEST(StringExtension, BoolValueIsThePlatforms) {
    EXPECT_TRUE(boolValue(u" \t+00yes"));
    EXPECT_FALSE(boolValue(u"no"));
    EXPECT_FALSE(boolValue(u""));
}

TEST(StringExtension, PreparedURLStringPutsHttpBeforeATextWithoutColon) {
    EXPECT_EQ(preparedURLString(u"abc"), u"http://abc");
    EXPECT_EQ(preparedURLString(u""), u"http://");
    EXPECT_EQ(preparedURLString(u"mailto:x"), u"mailto:x");
    EXPECT_EQ(preparedURLString(u"host:8080"), u"host:8080");
}

TEST(StringExtension, UppercaseFirstChangesTheFirstCharacterOnly) {
    EXPECT_EQ(uppercaseFirst(u"\u00E9a"), u"\u00C9a");
    EXPECT_EQ(uppercaseFirst(u""), u"");
    EXPECT_EQ(uppercaseFirst(u"\u00DFa"), u"SSa");
    EXPECT_EQ(uppercaseFirst(u"e\u0301ab"), u"E\u0301ab");
    EXPECT_EQ(uppercaseFirst(u"\u0149x"), u"\u02BCNx");
    EXPECT_EQ(uppercaseFirst(u"\r\nx"), u"\r\nx");
}

TEST(StringExtension, TheCutCountsLettersButTakesCharacters) {
    const auto cut = [](std::u16string_view text) { return replaceFirstCharactersBeforeFirstDigit(text, u"X"); };
    EXPECT_EQ(cut(u"BE12"), u"X12");
    EXPECT_EQ(cut(u"12"), u"X12");
    EXPECT_EQ(cut(u"ABC"), u"X");
    EXPECT_EQ(cut(u""), u"X");
    EXPECT_EQ(cut(u"AB-12"), u"X-12");
    EXPECT_EQ(cut(u"A-B12"), u"XB12");
    EXPECT_EQ(cut(u"\U0001F600a1"), u"Xa1");
    EXPECT_EQ(cut(u"BE\u0661"), u"X\u0661");
    EXPECT_EQ(cut(u"\U00010400\U0001D7D9"), u"X\U0001D7D9");
}

// A mark is a letter and no character of its own, so there may be more letters than characters.
TEST(StringExtension, MoreLettersThanCharactersCutThemAll) {
    EXPECT_EQ(replaceFirstCharactersBeforeFirstDigit(u"e\u0301", u"X"), u"X");
    EXPECT_EQ(replaceFirstCharactersBeforeFirstDigit(u"e\u03011", u"X"), u"X");
    EXPECT_EQ(replaceFirstCharactersBeforeFirstDigit(u"e\u030112", u"X"), u"X2");
}

TEST(StringExtension, RunsOfSpacesCollapse) {
    EXPECT_EQ(removeConsecutiveSpaces(u"a     b"), u"a b");
    EXPECT_EQ(removeConsecutiveSpaces(u"a\t\tb\u00A0\u00A0c"), u"a\t\tb\u00A0\u00A0c");
    EXPECT_EQ(removeConsecutiveSpaces(u""), u"");
    EXPECT_EQ(removeConsecutiveSpaces(u" "), u" ");
    EXPECT_EQ(removeConsecutiveSpaces(u"   "), u" ");
    EXPECT_EQ(removeConsecutiveSpaces(u"  a  b  "), u" a b ");
    EXPECT_EQ(removeConsecutiveSpaces(u"a b c"), u"a b c");
}

TEST(StringExtension, CollapsingGivesWhatReplacingPairsUntilNoneIsLeftGives) {
    for (unsigned pattern = 0; pattern < 1U << 14; ++pattern) {
        std::u16string text;
        for (unsigned bit = 0; bit < 14; ++bit) text += (pattern >> bit & 1) != 0 ? u' ' : u'a';
        std::u16string expected = text;
        while (expected.find(u"  ") != std::u16string::npos) replace(expected, u"  ", u" ");
        ASSERT_EQ(removeConsecutiveSpaces(text), expected) << pattern;
    }
}

TEST(StringExtension, EmojiFlagWritesEachScalarAsAnOptional) {
    EXPECT_EQ(emojiFlag(u"be"), u"Optional(\"\U0001F1E7\")Optional(\"\U0001F1EA\")");
    EXPECT_EQ(emojiFlag(u"BE"), emojiFlag(u"be"));
    EXPECT_EQ(emojiFlag(u""), u"");
    EXPECT_EQ(emojiFlag(u"1"), u"Optional(\"\U0001F1D6\")");
    EXPECT_EQ(emojiFlag(u"\u00DF"), u"Optional(\"\U0001F1F8\")Optional(\"\U0001F1F8\")");
}

TEST(StringExtension, EmojiFlagOfAScalarThatCannotMoveIsNil) {
    EXPECT_EQ(emojiFlag(u"\U000F0E5A"), u"Optional(\"\U0010FFFF\")");
    EXPECT_EQ(emojiFlag(u"\U000F0E5B"), u"nil");
    EXPECT_EQ(emojiFlag(u"\U0010FFFFb"), u"nilOptional(\"\U0001F1E7\")");
}

TEST(StringExtension, WithEmojisDecodesEscapes) {
    EXPECT_EQ(withEmojis(u"\\u00E9t\\u00E9"), u"\u00E9t\u00E9");
    EXPECT_EQ(withEmojis(u"\\uD83D\\uDE00"), u"\U0001F600");
    EXPECT_EQ(withEmojis(u"\\n"), u"\\n");
}

TEST(StringExtension, AResultIsOneAllocation) {
    const std::u16string text(1000, u'a');
    const auto allocationsOf = [](const auto& work) {
        const support::AllocationCount allocations;
        work();
        return allocations.count();
    };
    EXPECT_EQ(allocationsOf([&] { (void)removeConsecutiveSpaces(text); }), 1U);
    EXPECT_EQ(allocationsOf([&] { (void)withEmojis(text); }), 1U);
    EXPECT_EQ(allocationsOf([&] { (void)substringWithRange(text, {100, 200}); }), 1U);
    EXPECT_EQ(allocationsOf([&] { (void)substringToIndex(text, 500); }), 1U);
    EXPECT_EQ(allocationsOf([&] { (void)uppercaseFirst(text); }), 1U);
    EXPECT_EQ(allocationsOf([&] { (void)replaceFirstCharactersBeforeFirstDigit(text, text); }), 1U);
}

}  // namespace
}  // namespace ZORFoundation
