// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/HTMLNestingInternal.h>

#include <gtest/gtest.h>

#include <string>

namespace ZORPlatform {
namespace {

// Far more of a part than there may be levels.
std::string many(std::string_view part) {
    std::string text;
    for (int round = 0; round < 2000; ++round) text += part;
    return text;
}

TEST(HTMLNesting, ElementsThatAreClosedDoNotCount) {
    for (const std::string_view part :
         {"<div></div>", "<b><i></b></i>", "<DIV></div >", "<b><b><b><b>x</b></b></b></b>", "<a href='>'></a>",
          "<x-y></x-y>", "<h1></h2>", "<br>", "<img src=x/>", "<div><span></div>", "<svg><path/><g><path/></g></svg>",
          "<math><mi>x</mi><mspace/></math>"}) {
        EXPECT_FALSE(isNestedTooDeep(many(part))) << part;
    }
}

TEST(HTMLNesting, ElementsThatEndOneAnotherDoNotCount) {
    for (const std::string_view part : {"<p>", "<li>", "<li><p><span>", "<dt><dd>", "<option>", "<p><font>", "<h1>",
                                        "<button>", "<a>", "<nobr>", "<p><div></div>"}) {
        EXPECT_FALSE(isNestedTooDeep(many(part))) << part;
    }
    EXPECT_FALSE(isNestedTooDeep("<table>" + many("<tr><td><span><th>")));
    EXPECT_FALSE(isNestedTooDeep("<ul>" + many("<li><div>")));
    EXPECT_FALSE(isNestedTooDeep("<select>" + many("<option>a")));
}

TEST(HTMLNesting, ElementsThatStayOpenCount) {
    for (const std::string_view part : {"<div>", "<b>", "<span>", "<x-y>", "<ul><li>", "<li><dd>", "<optgroup>",
                                        "<table><td>", "<svg><g>", "<rt>", "<template><tr>"}) {
        EXPECT_TRUE(isNestedTooDeep(many(part))) << part;
    }
}

TEST(HTMLNesting, FormattingThatIsOpenedAgainCounts) {
    const auto bomb = [](std::string_view before, std::string_view behind) {
        std::string text;
        for (int part = 0; part < 600; ++part) {
            text.append(before).append(" id=").append(std::to_string(part)).append(">").append(behind);
        }
        return text;
    };
    EXPECT_TRUE(isNestedTooDeep(bomb("<p><b", "</p>")));
    EXPECT_TRUE(isNestedTooDeep(bomb("<li><font", "")));
    EXPECT_TRUE(isNestedTooDeep(bomb("<div><tt", "x</div>")));
    EXPECT_FALSE(isNestedTooDeep(bomb("<p><b", "</p></b>")));
    EXPECT_FALSE(isNestedTooDeep(bomb("<p><b", "</b></p>")));
    EXPECT_FALSE(isNestedTooDeep(bomb("<object><b", "</object>")));
    EXPECT_FALSE(isNestedTooDeep("<table>" + bomb("<td><b", "")));
    EXPECT_FALSE(isNestedTooDeep(many("<p><b></p>")));
}

// Values of attributes differ in their case.
TEST(HTMLNesting, OfEqualFormattingThreeAreOpenedAgain) {
    std::string different;
    for (unsigned part = 0; part < 600; ++part) {
        different += "<p><b id=";
        for (unsigned bit = 0; bit < 10; ++bit) different += (part >> bit & 1) != 0 ? 'a' : 'A';
        different += "></p>";
    }
    EXPECT_TRUE(isNestedTooDeep(different));
    EXPECT_FALSE(isNestedTooDeep(many("<p><b id=a></p>")));
}

// Text opens closed formatting again where it stands, and there it stays open.
TEST(HTMLNesting, FormattingThatTextOpensAgainStaysOpen) {
    for (const std::string_view part :
         {"<p><b></p>x", "<p><b></p> ", "<p><b></p><span></span>", "<ul><li><b id=1><b id=2><li>b</ul><br>",
          "<table><b id=1></table>x", "<table><b id=1><td></table>x", "<table><td></tr><b></table>x",
          "<table><td><b id=1><object><td></table>x", "<p><i><b></i></p>x"}) {
        EXPECT_TRUE(isNestedTooDeep(many(part))) << part;
    }
    for (const std::string_view part :
         {"<p><b></b></p>x", "<p><b></p></b>x", "<p><b></p><div></div>", "<table><td><b></table>x",
          "<object><b></object>x", "<template><b></template>x", "<table><td></td><td><b></tr></table>x"}) {
        EXPECT_FALSE(isNestedTooDeep(many(part))) << part;
    }
}

TEST(HTMLNesting, FormattingMovesBehindEightElementsAndStaysOpenInTheEighth) {
    const auto part = [](std::size_t levels) {
        std::string text = "<b>";
        for (std::size_t level = 0; level < levels; ++level) text += "<div>";
        text += "</b>";
        for (std::size_t level = 0; level < levels; ++level) text += "</div>";
        return text + "x";
    };
    EXPECT_FALSE(isNestedTooDeep(many(part(7))));
    EXPECT_TRUE(isNestedTooDeep(many(part(8))));
}

TEST(HTMLNesting, AFormIsClosedWithoutWhatStandsInIt) {
    EXPECT_TRUE(isNestedTooDeep(many("<form><div></form>")));
    EXPECT_FALSE(isNestedTooDeep(many("<form><div></div></form>")));
    EXPECT_FALSE(isNestedTooDeep(many("<form><form></form>")));
}

TEST(HTMLNesting, FramesetsCountWhereverTheyStand) {
    EXPECT_TRUE(isNestedTooDeep(many("<frameset><table><frameset>")));
    EXPECT_TRUE(isNestedTooDeep("<frameset><plaintext>" + many("<frameset>")));
    EXPECT_FALSE(isNestedTooDeep("<frameset>" + many("<frame></frameset>")));
}

TEST(HTMLNesting, ASearchFieldEndsAParagraph) {
    EXPECT_TRUE(isNestedTooDeep(many("<b><isindex><rt><p><x-y>")));
    EXPECT_TRUE(isNestedTooDeep("<form>" + many("<p><x-y><isindex></p><div>")));
    EXPECT_FALSE(isNestedTooDeep(many("<p><x-y><isindex>")));
}

TEST(HTMLNesting, PartsOfRubyEndOneAnotherAndParagraphs) {
    EXPECT_TRUE(isNestedTooDeep(many("<rb><ruby><p>")));
    EXPECT_TRUE(isNestedTooDeep(many("<ruby><rt>")));
    EXPECT_FALSE(isNestedTooDeep("<ruby>" + many("<rb>a<rt>b<p><rp>")));
    EXPECT_FALSE(isNestedTooDeep("<ruby>" + many("<rtc><rt>")));
}

TEST(HTMLNesting, ASelectionHoldsOptionsOnly) {
    for (const std::string_view part : {"<div><select></div></select>", "<select><svg><input><x-y/>",
                                        "<select><plaintext></select><div>", "<select><title></select><div></title>"}) {
        EXPECT_TRUE(isNestedTooDeep(many(part))) << part;
    }
    for (const std::string_view part :
         {"<select><div><option></select>", "<select><optgroup><option><optgroup></select>",
          "<div><select><option></div><input></div>", "<select><option></option></optgroup><select>"}) {
        EXPECT_FALSE(isNestedTooDeep(many(part))) << part;
    }
}

TEST(HTMLNesting, PartsOfATableAreNoneElsewhere) {
    EXPECT_TRUE(isNestedTooDeep(many("<div><td>")));
    EXPECT_TRUE(isNestedTooDeep(many("<template><div><td>")));
    EXPECT_TRUE(isNestedTooDeep(many("<table><table></table><div><td>")));
    EXPECT_FALSE(isNestedTooDeep("<table>" + many("<div><td>")));
    EXPECT_FALSE(isNestedTooDeep(many("<table><caption><b><tbody><tr><th><i></th></tbody></table>")));
}

// Each of these tags closes less than it seems to.
TEST(HTMLNesting, EndTagsThatCloseNothingDoNotHideOthers) {
    for (const std::string_view part :
         {"<div></x>", "<div></p>", "<div></span>", "<div></br>", "<div/>", "<div><object></div></object>",
          "<div><table></div></table>", "<b><div></b>", "<svg><div/></svg>", "<svg><div></div><path/></svg>",
          "<svg><foreignObject><section/></foreignObject></svg>", "<svg><font size=1><x-y/>",
          "<math><annotation-xml encoding='Text/HTML'><section/></math>", "<math><mi><mglyph><option>",
          "<div><!--</div>-->", "<div><a title='</div>'></a>", "<div><script></div></script>"}) {
        EXPECT_TRUE(isNestedTooDeep(many(part))) << part;
    }
}

TEST(HTMLNesting, WhatIsNoTagDoesNotCount) {
    for (const std::string_view part :
         {"< div>", "<1>", "&lt;div>", "<!div>", "<?div>", "</ div>", "<!--<div>-->", "<!--><!-- <div> --!>",
          "<script>'<div>'</script>", "<textarea><div></textarea>", "<style><div></STYLE >", "<a title='<div>'></a>",
          "<a title=\"<div>\"></a>", "<a title=<div></a>", "<a b = '<div>' c='<div>'></a>"}) {
        EXPECT_FALSE(isNestedTooDeep(many(part))) << part;
    }
    EXPECT_FALSE(isNestedTooDeep("<plaintext>" + many("<div>")));
    EXPECT_TRUE(isNestedTooDeep("<svg><plaintext></svg>" + many("<div>")));
    EXPECT_FALSE(isNestedTooDeep(many("<svg><![CDATA[<x-y>]]></svg>")));
    EXPECT_TRUE(isNestedTooDeep(many("<svg><x-y><![CDATA[></x-y>]]>")));
    EXPECT_FALSE(isNestedTooDeep(many("<x-y><![CDATA[></x-y>]]>")));
    EXPECT_FALSE(isNestedTooDeep("<script>" + many("<div>")));
    EXPECT_FALSE(isNestedTooDeep("<!--" + many("<div>")));
    EXPECT_TRUE(isNestedTooDeep("<!-->" + many("<div>")));
    EXPECT_TRUE(isNestedTooDeep("<!--->" + many("<div>")));
}

TEST(HTMLNesting, FiveHundredAndTwelveAttributesAreEnough) {
    const auto tag = [](int attributes) {
        std::string text = "<p";
        for (int at = 0; at < attributes; ++at) text += " a" + std::to_string(at) + "='v>'";
        return text + ">";
    };
    EXPECT_FALSE(isNestedTooDeep(tag(512)));
    EXPECT_TRUE(isNestedTooDeep(tag(513)));
}

// Their attributes are gathered in one element, each beside all that it has.
TEST(HTMLNesting, TagsOfTheRootShareTheirAttributes) {
    for (const std::string_view root : {"<html a=1 b>", "<BODY a b=2>"}) {
        std::string markup;
        for (int tag = 0; tag < 256; ++tag) markup += root;
        EXPECT_FALSE(isNestedTooDeep(markup)) << root;
        EXPECT_TRUE(isNestedTooDeep(markup + "<p></p><body a>")) << root;
    }
    EXPECT_FALSE(isNestedTooDeep(many("<body>")));
    EXPECT_FALSE(isNestedTooDeep(many("<p a b c>")));
}

TEST(HTMLNesting, UnfinishedMarkupIsReadToItsEnd) {
    for (const std::string_view markup :
         {"",      "<",  "<a",  "</",   "</a",     "<a ",      "<a b",     "<a b=",      "<a b='",          "<a b='c",
          "<a/",   "<!", "<!-", "<!--", "<!--a--", "<!--a--!", "<script>", "<script></", "<script></scrip", "<a =b>",
          "<a b=c"}) {
        EXPECT_FALSE(isNestedTooDeep(markup)) << markup;
        EXPECT_FALSE(isNestedTooDeep(std::string(markup) + ">")) << markup;
    }
}

}  // namespace
}  // namespace ZORPlatform
