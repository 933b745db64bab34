// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/HTMLImport.h>

#include <ZORPlatform/Foundation/Text.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>
#include <support/SmallStack.h>

#include <string>

namespace ZORPlatform {
namespace {

using Result = std::optional<std::u16string>;

std::string repeated(std::string_view part, std::size_t count) {
    std::string text;
    text.reserve(part.size() * count);
    for (; count > 0; --count) text += part;
    return text;
}

TEST(HTMLImport, NothingGivesNothing) {
    EXPECT_EQ(plainTextFromHTML(""), Result(u""));
    EXPECT_EQ(plainTextFromHTML("  \t\n"), Result(u""));
    EXPECT_EQ(plainTextFromHTML("<!-- a -->"), Result(u""));
}

TEST(HTMLImport, WhiteSpaceCollapsesAcrossElementsAndGoesAtBothEnds) {
    EXPECT_EQ(plainTextFromHTML(" <b>bo</b>ld  text "), Result(u"bold text"));
    EXPECT_EQ(plainTextFromHTML("a <b> b</b>"), Result(u"a b"));
    EXPECT_EQ(plainTextFromHTML("a\t\r\n\f\u200B b"), Result(u"a b"));
    EXPECT_EQ(plainTextFromHTML("<p>a </p> <p> b</p>"), Result(u"a\nb\n"));
    EXPECT_EQ(plainTextFromHTML("a <br> b"), Result(u"a \nb"));
}

TEST(HTMLImport, ANoBreakSpaceIsKept) {
    EXPECT_EQ(plainTextFromHTML("a &nbsp; b"), Result(u"a \u00A0 b"));
    EXPECT_EQ(plainTextFromHTML("&nbsp;"), Result(u"\u00A0"));
}

TEST(HTMLImport, PreformattedTextStaysAsItIs) {
    EXPECT_EQ(plainTextFromHTML("x<pre>\n a\t b\n</pre>y"), Result(u"x\n a\t b\ny"));
    EXPECT_EQ(plainTextFromHTML("<pre>a <b> b</b></pre>"), Result(u"a  b\n"));
    EXPECT_EQ(plainTextFromHTML("<div style='color: red; White-Space: PRE-WRAP !important'>a  b</div>"),
              Result(u"a  b\n"));
    EXPECT_EQ(plainTextFromHTML("<pre>a  b<span style='white-space:normal'>c  d</span></pre>"), Result(u"a  bc d\n"));
}

TEST(HTMLImport, ABlockBeginsAndEndsALine) {
    EXPECT_EQ(plainTextFromHTML("<p>one</p><p>two</p>"), Result(u"one\ntwo\n"));
    EXPECT_EQ(plainTextFromHTML("x<div>y</div>z"), Result(u"x\ny\nz"));
    EXPECT_EQ(plainTextFromHTML("x <h1>y</h1> z"), Result(u"x\ny\nz"));
    EXPECT_EQ(plainTextFromHTML("<div><div>a</div></div>b"), Result(u"a\nb"));
}

TEST(HTMLImport, AnEmptyBlockGivesAnEmptyLine) {
    EXPECT_EQ(plainTextFromHTML("a<p></p>b"), Result(u"a\n\nb"));
    EXPECT_EQ(plainTextFromHTML("<p> </p>"), Result(u"\n"));
    EXPECT_EQ(plainTextFromHTML("a<hr>b"), Result(u"a\n\nb"));
}

TEST(HTMLImport, ABreakIsALineFeedAndInsideAParagraphALineSeparator) {
    EXPECT_EQ(plainTextFromHTML("a<br>b"), Result(u"a\nb"));
    EXPECT_EQ(plainTextFromHTML("a<br><br>b"), Result(u"a\n\nb"));
    EXPECT_EQ(plainTextFromHTML("<div>a<br>b</div>"), Result(u"a\nb\n"));
    EXPECT_EQ(plainTextFromHTML("<p>one<br>two</p>"), Result(u"one\u2028two\n"));
    EXPECT_EQ(plainTextFromHTML("<h3>one <br> two</h3>"), Result(u"one \u2028two\n"));
    EXPECT_EQ(plainTextFromHTML("<p><b>one<br>two</b></p>"), Result(u"one\ntwo\n"));
}

TEST(HTMLImport, ALineSeparatorAtTheEndOfAParagraphGivesWayToItsLineFeed) {
    EXPECT_EQ(plainTextFromHTML("<p>one<br></p>two"), Result(u"one\ntwo"));
    EXPECT_EQ(plainTextFromHTML("<p>one<br><br></p>"), Result(u"one\u2028\n"));
    EXPECT_EQ(plainTextFromHTML("<p><br></p>x"), Result(u"\nx"));
}

TEST(HTMLImport, ItemsHaveMarksByDepth) {
    EXPECT_EQ(plainTextFromHTML("<ul><li>a</li><li>b</li></ul>"), Result(u"\t\u2022\ta\n\t\u2022\tb\n"));
    EXPECT_EQ(plainTextFromHTML("x<ul><li>a<ul><li>b<ul><li>c<ul><li>d</ul></ul></ul></ul>y"),
              Result(u"x\n\t\u2022\ta\n\t\u25E6\tb\n\t\u25AA\tc\n\t\u25AA\td\ny"));
    EXPECT_EQ(plainTextFromHTML("<ul><li></ul>"), Result(u"\t\u2022\t\n"));
    EXPECT_EQ(plainTextFromHTML("<li>a"), Result(u"a\n"));
}

TEST(HTMLImport, OrderedItemsHaveNumbersWithAFullStop) {
    EXPECT_EQ(plainTextFromHTML("<ol><li>a<li>b</ol>"), Result(u"\t1.\ta\n\t2.\tb\n"));
    EXPECT_EQ(plainTextFromHTML("<ol start=9><li>a<li value=20>b<li>c</ol>"), Result(u"\t9.\ta\n\t20.\tb\n\t21.\tc\n"));
    EXPECT_EQ(plainTextFromHTML("<ol start=x><li value>a</ol>"), Result(u"\t1.\ta\n"));
    EXPECT_EQ(plainTextFromHTML("<ol><li>a<ul><li>b</ul><li>c</ol>"), Result(u"\t1.\ta\n\t\u25E6\tb\n\t2.\tc\n"));
    EXPECT_EQ(plainTextFromHTML("<ol start=99999999999><li>a<li>b</ol>"),
              Result(u"\t2147483647.\ta\n\t2147483648.\tb\n"));
}

TEST(HTMLImport, ABlockInAnItemEndsWithALineSeparator) {
    EXPECT_EQ(plainTextFromHTML("<ul><li><div>a</div>b</li></ul>"), Result(u"\t\u2022\ta\u2028b\n"));
    EXPECT_EQ(plainTextFromHTML("<ul><li><div><div>a</div></div></li></ul>"), Result(u"\t\u2022\ta\n"));
    EXPECT_EQ(plainTextFromHTML("<ul><li><p>a</p><p>b</p></li></ul>"), Result(u"\t\u2022\ta\nb\n"));
    EXPECT_EQ(plainTextFromHTML("<ul><li>a<br>b</li></ul>"), Result(u"\t\u2022\ta\u2028b\n"));
}

TEST(HTMLImport, EachCellIsABlockAndTheFootComesLast) {
    EXPECT_EQ(plainTextFromHTML("<table><tr><td>a<td>b<tr><th>c</table>d"), Result(u"a\nb\nc\nd"));
    EXPECT_EQ(plainTextFromHTML("<table><thead><tr><td>h<tfoot><tr><td>f<tbody><tr><td>b</table>"),
              Result(u"h\nb\nf\n"));
    EXPECT_EQ(plainTextFromHTML("<table>lost<tr><td>a</table>"), Result(u"lost\na\n"));
}

TEST(HTMLImport, QuotesAreCurlyAndAlternate) {
    EXPECT_EQ(plainTextFromHTML("<q>a <q>b</q></q>"), Result(u"\u201Ca \u2018b\u2019\u201D"));
}

TEST(HTMLImport, FieldsGiveTheirValue) {
    EXPECT_EQ(plainTextFromHTML("a <input value='b  c'> <textarea> d\n e</textarea>"), Result(u"a b  c  d\n e"));
    EXPECT_EQ(plainTextFromHTML("<input type=EMAIL value=x><input type=hidden value=y><input type=checkbox value=z>"),
              Result(u"x"));
}

TEST(HTMLImport, WhatIsNotDisplayedHasNoText) {
    EXPECT_EQ(plainTextFromHTML("a<script>x</script>b<style>y{}</style>c<!-- z -->d"), Result(u"abcd"));
    EXPECT_EQ(plainTextFromHTML("<head><title>t</title></head>a<template>b</template><img alt=c src=d>"), Result(u"a"));
    EXPECT_EQ(plainTextFromHTML("a<p hidden>b</p><span style='display : NONE'>c</span>d"), Result(u"ad"));
    EXPECT_EQ(plainTextFromHTML("a<span style='display:none;display:inline'>b</span>"), Result(u"ab"));
    EXPECT_EQ(plainTextFromHTML("<video>a</video><iframe>b</iframe><ruby>c<rp>(</rp><rt>d</rt></ruby>"), Result(u"cd"));
}

TEST(HTMLImport, ReferencesAreDecodedAsTheStandardSays) {
    EXPECT_EQ(plainTextFromHTML("&amp; &lt;b&gt; &euro; &#233;&#xE9;"), Result(u"& <b> \u20AC \u00E9\u00E9"));
    EXPECT_EQ(plainTextFromHTML("&notit; &ampx &bogus; AT&T"), Result(u"\u00ACit; &x &bogus; AT&T"));
    EXPECT_EQ(plainTextFromHTML("&#128;&#150;&#0;&#xD800;&#x110000;"), Result(u"\u20AC\u2013\uFFFD\uFFFD\uFFFD"));
    EXPECT_EQ(plainTextFromHTML("&CounterClockwiseContourIntegral;"), Result(u"\u2233"));
}

TEST(HTMLImport, ControlCharactersAndNoncharactersStay) {
    EXPECT_EQ(plainTextFromHTML("a\x01\x08\x0B\x0E\x1F\x7F\xC2\x80\xC2\x9Fz"),
              Result(u"a\u0001\u0008\u000B\u000E\u001F\u007F\u0080\u009Fz"));
    EXPECT_EQ(plainTextFromHTML("\xEF\xB7\x90\xEF\xB7\xAF\xEF\xBF\xBE\xEF\xBF\xBF"),
              Result(u"\uFDD0\uFDEF\uFFFE\uFFFF"));
    EXPECT_EQ(plainTextFromHTML("\xF0\x9F\xBF\xBE\xF4\x8F\xBF\xBF"), Result(u"\U0001FFFE\U0010FFFF"));
    EXPECT_EQ(plainTextFromHTML("&#1;&#x7F;&#xFFFF;"), Result(u"\u0001\u007F\uFFFF"));
    EXPECT_EQ(plainTextFromHTML("<input value='a\x01'>\x02"), Result(u"a\u0001\u0002"));
    EXPECT_EQ(plainTextFromHTML("<pre>\x0B \x0B</pre>"), Result(u"\u000B \u000B\n"));
}

TEST(HTMLImport, ControlCharactersStayBesideCharactersOfPrivateUse) {
    std::u16string text = u"\u0001";
    for (char32_t block = 0x100000; block < 0x10FE00; block += 0x100) appendScalar(text, block + 1);
    EXPECT_EQ(plainTextFromHTML(utf8(text)), text);
}

TEST(HTMLImport, TextAtTheEndOfAFormStaysInIt) {
    EXPECT_EQ(plainTextFromHTML("<form>a</form>b"), Result(u"a\nb"));
    EXPECT_EQ(plainTextFromHTML("<form>a&amp;</FORM >b"), Result(u"a&\nb"));
    EXPECT_EQ(plainTextFromHTML("<form><input value=v>a</form>"), Result(u"va\n"));
    EXPECT_EQ(plainTextFromHTML("<form><p>a</form>b</p>c"), Result(u"a\nb\n\nc"));
    EXPECT_EQ(plainTextFromHTML("<form>a<form>b</form>c</form>d"), Result(u"ab\ncd"));
    EXPECT_EQ(plainTextFromHTML("<form><textarea>a</form></textarea>b</form>c"), Result(u"a</form>b\nc"));
    EXPECT_EQ(plainTextFromHTML("a</form>b"), Result(u"ab"));
}

TEST(HTMLImport, BrokenMarkupIsRead) {
    EXPECT_EQ(plainTextFromHTML("<b>a<i>b</b>c</i>d"), Result(u"abcd"));
    EXPECT_EQ(plainTextFromHTML("a < b > c"), Result(u"a < b > c"));
    EXPECT_EQ(plainTextFromHTML("a</div></p>b"), Result(u"a\n\nb"));
    EXPECT_EQ(plainTextFromHTML("<"), Result(u"<"));
    EXPECT_EQ(plainTextFromHTML("</"), Result(u"</"));
    EXPECT_EQ(plainTextFromHTML("a<b"), Result(u"a"));
    EXPECT_EQ(plainTextFromHTML("a<![CDATA[z]]>b"), Result(u"ab"));
    EXPECT_EQ(plainTextFromHTML("<plaintext>a<b>"), Result(u"a<b>\n"));
}

TEST(HTMLImport, LongFlatMarkupIsRead) {
    EXPECT_EQ(plainTextFromHTML(repeated(" <br>", 100000))->size(), 100000U);
    EXPECT_EQ(plainTextFromHTML(repeated("<br>", 10000))->size(), 10000U);
    EXPECT_EQ(plainTextFromHTML(repeated("<li>", 10000))->size(), 10000U);
    EXPECT_EQ(plainTextFromHTML("<ul>" + repeated("<li>a", 10000))->size(), 50000U);
    EXPECT_EQ(plainTextFromHTML(repeated("<p>a", 10000))->size(), 20000U);
    EXPECT_EQ(plainTextFromHTML("<table>" + repeated("<tr><td>a", 10000))->size(), 20000U);
    EXPECT_EQ(plainTextFromHTML(repeated("<div><span>a</div>", 10000))->size(), 20000U);
}

TEST(HTMLImport, FiveHundredAndTwelveLevelsAreReadAndOneMoreIsNot) {
    EXPECT_EQ(plainTextFromHTML(repeated("<div>", 512) + "a"), Result(u"a\n"));
    EXPECT_EQ(plainTextFromHTML(repeated("<div>", 513) + "a"), std::nullopt);
    EXPECT_EQ(plainTextFromHTML(repeated("<div>", 100000)), std::nullopt);
}

TEST(HTMLImport, ReopenedFormattingThatWouldFillTheMemoryIsRefused) {
    std::string bomb;
    for (int part = 0; part < 2000; ++part) bomb += "<p><b id=" + std::to_string(part) + "></p>";
    EXPECT_EQ(plainTextFromHTML(bomb), std::nullopt);
}

// Its text opens it again in the body, once a paragraph: 100,000 levels, in which the parser would be lost for seconds.
TEST(HTMLImport, ReopenedFormattingThatWouldNestIsRefused) {
    EXPECT_EQ(plainTextFromHTML(repeated("<p><b></p>x", 100000)), std::nullopt);
    EXPECT_EQ(plainTextFromHTML(repeated("<p><b></p>x", 500))->size(), 3 * 500U - 1);
}

TEST(HTMLImport, DeepDocumentsNeedLittleStack) {
    support::runInSmallStack([] {
        EXPECT_EQ(plainTextFromHTML(repeated("<div>", 512) + "a"), Result(u"a\n"));
        EXPECT_EQ(plainTextFromHTML(repeated("<b>", 512) + "a"), Result(u"a"));
    });
}

}  // namespace
}  // namespace ZORPlatform
