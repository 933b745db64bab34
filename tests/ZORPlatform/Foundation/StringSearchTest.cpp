// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/StringSearch.h>

#include <ZORPlatform/Foundation/Text.h>

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace ZORPlatform {
namespace {

bool contains(std::u16string_view text, std::u16string_view searched) {
    return containsString(text, searched, NSStringCompareOptions::none);
}

bool containsInAnyCase(std::u16string_view text, std::u16string_view searched) {
    return containsString(text, searched, NSStringCompareOptions::caseInsensitive);
}

// Every way to take whole characters out of the text, compared with what is searched.
bool containsByDefinition(std::u16string_view text, std::u16string_view searched, NSStringCompareOptions options) {
    const auto form = [options](std::u16string_view part) {
        return options == NSStringCompareOptions::none ? canonicalDecomposition(part) : canonicalCaseFolding(part);
    };
    std::vector<std::size_t> boundaries{0};
    while (boundaries.back() < text.size()) {
        const std::size_t begin = boundaries.back();
        boundaries.push_back(text[begin] == u'\r' ? begin + 1 : characterEnd(text, begin));
    }
    for (std::size_t begin = 0; begin < boundaries.size(); ++begin) {
        for (std::size_t end = begin + 1; end < boundaries.size(); ++end) {
            const std::u16string_view part = text.substr(boundaries[begin], boundaries[end] - boundaries[begin]);
            if (form(part) == form(searched)) return true;
        }
    }
    return false;
}

TEST(StringSearch, FindsATextAtBothEndsAndInTheMiddle) {
    EXPECT_TRUE(contains(u"abcd", u"ab"));
    EXPECT_TRUE(contains(u"abcd", u"bc"));
    EXPECT_TRUE(contains(u"abcd", u"cd"));
    EXPECT_TRUE(contains(u"abcd", u"abcd"));
    EXPECT_FALSE(contains(u"abcd", u"abcde"));
    EXPECT_FALSE(contains(u"abcd", u"AB"));
}

TEST(StringSearch, TheEmptyTextIsNeverFound) {
    EXPECT_FALSE(contains(u"abc", u""));
    EXPECT_FALSE(contains(u"", u""));
    EXPECT_FALSE(containsInAnyCase(u"abc", u""));
}

TEST(StringSearch, FindsCanonicallyEquivalentSpellings) {
    EXPECT_TRUE(contains(u"caf\u00E9!", u"e\u0301"));
    EXPECT_TRUE(contains(u"cafe\u0301!", u"\u00E9"));
    EXPECT_TRUE(contains(u"q\u0307\u0323", u"q\u0323\u0307"));
    EXPECT_TRUE(contains(u"\u212B", u"\u00C5"));
    EXPECT_FALSE(contains(u"\uFB01", u"fi"));
}

TEST(StringSearch, FindsWholeCharactersOnly) {
    EXPECT_FALSE(contains(u"caf\u00E9", u"e"));
    EXPECT_FALSE(contains(u"cafe\u0301", u"e"));
    EXPECT_FALSE(contains(u"cafe\u0301", u"\u0301"));
    EXPECT_TRUE(contains(u"\u0301", u"\u0301"));
    EXPECT_FALSE(contains(u"\U0001F469\u200D\U0001F469", u"\U0001F469"));
    EXPECT_TRUE(contains(u"\U0001F469\u200D\U0001F469\U0001F469", u"\U0001F469"));
    EXPECT_TRUE(contains(u"a\r\nb", u"\n"));
    EXPECT_TRUE(contains(u"\u00E9\r\nb", u"\n"));
}

TEST(StringSearch, WithoutCaseFoldsInFull) {
    EXPECT_TRUE(containsInAnyCase(u"Hello", u"ELL"));
    EXPECT_TRUE(containsInAnyCase(u"Stra\u00DFe", u"STRASSE"));
    EXPECT_TRUE(containsInAnyCase(u"STRASSE", u"\u00DF"));
    EXPECT_TRUE(containsInAnyCase(u"\uFB01n", u"FIN"));
    EXPECT_TRUE(containsInAnyCase(u"\u212A", u"k"));
    EXPECT_TRUE(containsInAnyCase(u"ok", u"\u212A"));
    EXPECT_TRUE(containsInAnyCase(u"\u03A3\u03A3", u"\u03C2"));
    EXPECT_FALSE(containsInAnyCase(u"\u0131", u"I"));
    EXPECT_FALSE(containsInAnyCase(u"\u00E9", u"e"));
    // Half a ligature is not found: nothing in the text stands for it.
    EXPECT_FALSE(containsInAnyCase(u"\uFB01n", u"in"));
    EXPECT_FALSE(containsInAnyCase(u"\u00DF", u"s"));
}

TEST(StringSearch, LoneSurrogatesAreFoundAsTheyStand) {
    EXPECT_TRUE(contains(u"a\xD83D", u"\xD83D"));
    EXPECT_FALSE(contains(u"a\U0001F600", u"\xD83D"));
}

TEST(StringSearch, AgreesWithComparingEveryPartOfATextOfWholeCharacters) {
    constexpr std::u16string_view kUnits = u"aAbsS\u00DF\u00E9e\u0301\u0323\r\n\uFB01fi\u200D\u212Ak\u0345\u03B9";
    std::mt19937 random(31);
    const auto text = [&](std::size_t most) {
        std::u16string made(random() % most, u'\0');
        for (char16_t& unit : made) unit = kUnits[random() % kUnits.size()];
        return made;
    };
    for (int round = 0; round < 20000; ++round) {
        const std::u16string in = text(10);
        const std::u16string searched = text(4);
        for (const auto options : {NSStringCompareOptions::none, NSStringCompareOptions::caseInsensitive}) {
            ASSERT_EQ(containsString(in, searched, options), containsByDefinition(in, searched, options))
                << ::testing::PrintToString(in) << ::testing::PrintToString(searched);
        }
    }
}

TEST(StringSearch, ReplacesFromTheLeftWithoutOverlap) {
    const auto replaced = [](std::u16string text, std::u16string_view target, std::u16string_view replacement) {
        replaceOccurrences(text, target, replacement);
        return text;
    };
    EXPECT_EQ(replaced(u"aXbXc", u"X", u"--"), u"a--b--c");
    EXPECT_EQ(replaced(u"aaa", u"aa", u"b"), u"ba");
    EXPECT_EQ(replaced(u"aaaa", u"aa", u"a"), u"aa");
    EXPECT_EQ(replaced(u"abab", u"abab", u""), u"");
    EXPECT_EQ(replaced(u"ababac", u"abac", u"!"), u"ab!");
    EXPECT_EQ(replaced(u"abc", u"", u"x"), u"abc");
    EXPECT_EQ(replaced(u"", u"a", u"x"), u"");
    EXPECT_EQ(replaced(u"e\u0301", u"\u00E9", u"x"), u"e\u0301");
    EXPECT_EQ(replaced(u"e\u0301", u"e", u"x"), u"x\u0301");
}

// A comparison at every position would take minutes.
TEST(StringSearch, RepetitiveTextsTakeLinearTime) {
    const std::u16string text(1'000'000, u'a');
    const std::u16string searched = std::u16string(500'000, u'a') + u'b';
    EXPECT_FALSE(contains(text, searched));
    EXPECT_FALSE(contains(text + u'\u00E9', searched));
    std::u16string replaced = text;
    replaceOccurrences(replaced, searched, u"");
    EXPECT_EQ(replaced, text);
}

}  // namespace
}  // namespace ZORPlatform
