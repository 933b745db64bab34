// SPDX-License-Identifier: Apache-2.0
#include "ZorProcess.h"

#include <gtest/gtest.h>

namespace zor::testing {
namespace {

TEST(TextCommand, ConvertsRecordByRecord) {
    EXPECT_EQ(runZor({"text", "accents"}, "\u00E9l\u00E8ve\n\n5 \u20AC\n").out, "eleve\n\n5 ?\n");
    EXPECT_EQ(runZor({"text", "escapes"}, "\\u00E9t\\u00E9\n\\uD83D\\uDE00\n\\U00E9\n").out,
              "\u00E9t\u00E9\n\U0001F600\n\\U00E9\n");
    EXPECT_EQ(runZor({"text", "flag"}, "be\n").out, "Optional(\"\U0001F1E7\")Optional(\"\U0001F1EA\")\n");
    EXPECT_EQ(runZor({"text", "spaces"}, "a     b\na\t\tb").out, "a b\na\t\tb\n");
    EXPECT_EQ(runZor({"text", "html"}, "<b>bo</b>ld &amp; more\n").out, "bold & more\n");
}

TEST(TextCommand, ConvertsTextsOfTheCommandLine) {
    EXPECT_EQ(runZor({"text", "accents", "\u00E9t\u00E9", "No\u00EBl"}).out, "ete\nNoel\n");
    EXPECT_EQ(runZor({"text", "html", "<p>a</p><p>b</p>"}).out, "a\u2028b\n");
}

TEST(TextCommand, TheTextOfMarkupStaysOnItsLine) {
    EXPECT_EQ(runZor({"text", "html"}, "<p>a</p><p>b<br>c</p>\n<ul><li>a<li>b</ul>\n").out,
              "a\u2028b\u2028c\n \u2022 a\u2028 \u2022 b\n");
    EXPECT_EQ(runZor({"text", "html", "--format=tsv", "--emit=normalized"}, "<p>a</p><ul><li>b</ul>\n").out,
              "<p>a</p><ul><li>b</ul>\ta\\n\\t\u2022\\tb\\n\n");
}

TEST(TextCommand, AnEscapeOfALineEndOrOfHalfACharacterIsReplaced) {
    EXPECT_EQ(runZor({"text", "escapes"}, "a\\u000Ab\\u0000\\uD83D\n").out, "a\uFFFDb\uFFFD\uFFFD\n");
}

TEST(TextCommand, RecordsThatCannotBeReadAreInvalid) {
    EXPECT_EQ(runZor({"text", "accents", "--emit=verdict,reason,formatted"}, "\u00E9\nx\xFF\n").out,
              "1\tnone\te\n0\tbad_utf8\tx\uFFFD\n");
}

TEST(TextCommand, MarkupThatIsMadeToTakeLongHasNoText) {
    std::string bomb;
    for (int level = 0; level < 1000; ++level) bomb += "<div>";
    EXPECT_EQ(runZor({"text", "html"}, bomb + "a\nb\n").out, "\nb\n");
}

TEST(TextCommand, AConversionIsNeeded) {
    for (const Words& words : {Words{"text"}, Words{"text", "upper"}, Words{"text", "iban"}}) {
        const RunResult result = runZor(words, "x\n");
        EXPECT_EQ(result.err, "zor: text: accents, html, escapes, flag or spaces is needed\n");
        EXPECT_EQ(result.exitCode, 2);
    }
    EXPECT_EQ(runZor({"text", "accents", "--min=1"}, "x\n").exitCode, 2);
    EXPECT_EQ(runZor({"format", "accents"}, "x\n").exitCode, 2);
}

}  // namespace
}  // namespace zor::testing
