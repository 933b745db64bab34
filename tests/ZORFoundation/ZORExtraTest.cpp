// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORExtra.h>

#include <gtest/gtest.h>

namespace ZORFoundation {
namespace {

using namespace ZORExtra;
using Result = std::optional<std::u16string>;

TEST(ZORExtra, PreparedURLStringPutsHttpsBeforeATextWithoutColon) {
    EXPECT_EQ(zor_preparedURLString(u"abc"), u"https://abc");
    EXPECT_EQ(zor_preparedURLString(u""), u"https://");
    EXPECT_EQ(zor_preparedURLString(u"mailto:x"), u"mailto:x");
    EXPECT_EQ(zor_preparedURLString(u"host:8080"), u"host:8080");
    EXPECT_EQ(zor_preparedURLString(u"a%@b"), u"https://a%@b");
}

TEST(ZORExtra, ContainsSubstringTakesNoAccountOfCase) {
    EXPECT_TRUE(zor_containsSubstring(u"Hello", u"ELL"));
    EXPECT_TRUE(zor_containsSubstring(u"\u00C9COLE", u"\u00E9co"));
    EXPECT_FALSE(zor_containsSubstring(u"\u00E9cole", u"eco"));
    EXPECT_FALSE(zor_containsSubstring(u"Hello", u"h llo"));
}

TEST(ZORExtra, AnAbsentSubstringIsNotFound) { EXPECT_FALSE(zor_containsSubstring(u"Hello", {})); }

TEST(ZORExtra, RemoveAccentsGivesAscii) {
    EXPECT_EQ(removeAccents(u"\u00E9l\u00E8ve"), u"eleve");
    EXPECT_EQ(removeAccents(u"5 \u20AC \U0001F600"), u"5 ? ?");
    EXPECT_EQ(removeAccents(u""), u"");
}

TEST(ZORExtra, ALineFeedInTheReceiverIsASpaceAndABreak) {
    EXPECT_EQ(zor_parsedHTML(u"a\nb"), Result(u"a \nb"));
    EXPECT_EQ(zor_parsedHTML(u"a\n\nb"), Result(u"a \n\nb"));
    EXPECT_EQ(zor_parsedHTML(u"a\r\nb"), Result(u"a \nb"));
    EXPECT_EQ(zor_parsedHTML(u"<p>a\nb</p>"), Result(u"a \u2028b\n"));
    EXPECT_EQ(zor_parsedHTML(u"<pre>a\nb</pre>"), Result(u"a \nb\n"));
}

TEST(ZORExtra, ParsedHTMLIsPlainText) {
    EXPECT_EQ(zor_parsedHTML(u"&amp;"), Result(u"&"));
    EXPECT_EQ(zor_parsedHTML(u"<b>\u00E9\U0001F600</b>"), Result(u"\u00E9\U0001F600"));
    EXPECT_EQ(zor_parsedHTML(u"<b>\u00E9</b>\xD83D"), Result());
    EXPECT_EQ(zor_parsedHTML(u""), Result(u""));
}

TEST(ZORExtra, ParsedHTMLReadsAnyNumberOfLinesAndNoBomb) {
    EXPECT_EQ(zor_parsedHTML(std::u16string(100'000, u'\n'))->size(), 100'000U);
    std::u16string bomb;
    for (int level = 0; level < 100'000; ++level) bomb += u"<div>";
    EXPECT_EQ(zor_parsedHTML(bomb), std::nullopt);
}

}  // namespace
}  // namespace ZORFoundation
