// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSRegularExpression.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ZORPlatform {
namespace {

using Ranges = std::vector<std::vector<NSRange>>;

struct Search {
    Ranges matches;
    bool complete;
};

Search search(std::u16string_view pattern, std::u16string_view text) {
    Search result{};
    const auto expression = NSRegularExpression::regularExpressionWithPattern(pattern);
    result.complete = expression->enumerateMatchesInString(text, [&](std::span<const NSRange> ranges) {
        result.matches.emplace_back(ranges.begin(), ranges.end());
        return true;
    });
    return result;
}

TEST(NSRegularExpression, MatchesComeInOrderWithTheirGroups) {
    const Search found = search(u"([a-z])([0-9]*)", u"a1b22 c");
    EXPECT_TRUE(found.complete);
    EXPECT_EQ(found.matches, (Ranges{{{0, 2}, {0, 1}, {1, 1}}, {{2, 3}, {2, 1}, {3, 2}}, {{6, 1}, {6, 1}, {7, 0}}}));
}

TEST(NSRegularExpression, AGroupThatTookNoPartIsNowhere) {
    EXPECT_EQ(search(u"(a)|b", u"b").matches, (Ranges{{{0, 1}, {NSNotFound, 0}}}));
}

TEST(NSRegularExpression, EmptyMatchesMoveOnByOneCodePoint) {
    EXPECT_EQ(search(u"x*", u"\U0001F600a").matches, (Ranges{{{0, 0}}, {{2, 0}}, {{3, 0}}}));
}

TEST(NSRegularExpression, ADollarSignMatchesBeforeOneFinalLineEnd) {
    EXPECT_EQ(search(u"\\.sqlite$", u"a.sqlite\n").matches, (Ranges{{{1, 7}}}));
    EXPECT_TRUE(search(u"\\.sqlite$", u"a.sqlite\n\n").matches.empty());
}

TEST(NSRegularExpression, CaseMattersWithoutOptions) { EXPECT_TRUE(search(u"A", u"a").matches.empty()); }

TEST(NSRegularExpression, TheBlockEndsTheSearch) {
    int calls = 0;
    EXPECT_TRUE(NSRegularExpression::regularExpressionWithPattern(u"a")->enumerateMatchesInString(
        u"aaa", [&](std::span<const NSRange>) { return ++calls < 2; }));
    EXPECT_EQ(calls, 2);
}

TEST(NSRegularExpression, CaptureGroupsAreCounted) {
    EXPECT_EQ(NSRegularExpression::regularExpressionWithPattern(u"a(?:b)")->numberOfCaptureGroups(), 0U);
    EXPECT_EQ(NSRegularExpression::regularExpressionWithPattern(u"(a(b))")->numberOfCaptureGroups(), 2U);
}

TEST(NSRegularExpression, ABadPatternGivesTheInvalidValueError) {
    for (const std::u16string_view pattern : {u"(", u"a)", u"[a-z", u"*", u"a{3,2}", u"(?<=a*)b", u""}) {
        std::optional<NSError> error;
        EXPECT_FALSE(NSRegularExpression::regularExpressionWithPattern(pattern, &error));
        EXPECT_EQ(error, NSError(NSCocoaErrorDomain, 2048, {{{u"NSInvalidValue", std::u16string(pattern)}}}));
    }
}

TEST(NSRegularExpression, AGoodPatternClearsTheError) {
    std::optional<NSError> error(std::in_place, NSCocoaErrorDomain, 1);
    EXPECT_TRUE(NSRegularExpression::regularExpressionWithPattern(u"a", &error));
    EXPECT_FALSE(error);
}

TEST(NSRegularExpression, NestingInAPatternIsBounded) {
    EXPECT_FALSE(NSRegularExpression::regularExpressionWithPattern(std::u16string(1'000'000, u'(')));
    const std::u16string nested = std::u16string(40, u'(') + u"a" + std::u16string(40, u')');
    EXPECT_EQ(NSRegularExpression::regularExpressionWithPattern(nested)->numberOfCaptureGroups(), 40U);
}

TEST(NSRegularExpression, ExponentialBacktrackingIsGivenUp) {
    EXPECT_FALSE(search(u"(a+)+$", std::u16string(60, u'a') + u"x").complete);
}

TEST(NSRegularExpression, QuadraticBacktrackingIsGivenUp) {
    EXPECT_FALSE(search(u"<([^>]*)>", std::u16string(1'000'000, u'<')).complete);
}

// Atomic groups read the rest of the text from each position without a single step that ICU counts.
TEST(NSRegularExpression, QuadraticReadingIsGivenUp) {
    EXPECT_FALSE(search(u"(?>[^>]*)>", std::u16string(400'000, u'<')).complete);
    EXPECT_FALSE(search(u"(?=(?>[^>]*))<", std::u16string(400'000, u'<')).complete);
}

TEST(NSRegularExpression, TooDeepBacktrackingIsGivenUp) {
    EXPECT_FALSE(search(u"(a|b)+", std::u16string(2'000'000, u'a')).complete);
}

TEST(NSRegularExpression, LinearPatternsFinishOnLongTexts) {
    const Search found = search(u"([0-9])", std::u16string(3'000'000, u'1'));
    EXPECT_TRUE(found.complete);
    EXPECT_EQ(found.matches.size(), 3'000'000U);
}

}  // namespace
}  // namespace ZORPlatform
