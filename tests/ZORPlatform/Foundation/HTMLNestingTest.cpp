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
    for (const std::string_view part : {"<div></div>", "<b><i></b></i>", "<DIV></div >", "<a href='>'></a>",
                                        "<x-y></x-y>", "<h1></h2>", "<br>", "<img src=x/>", "<div><span></div>",
                                        "<svg><path/><g><path/></g></svg>", "<math><mi>x</mi><mspace/></math>"}) {
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

// Each of these tags closes less than it seems to.
TEST(HTMLNesting, EndTagsThatCloseNothingDoNotHideOthers) {
    for (const std::string_view part :
         {"<div></x>", "<div></p>", "<div></span>", "<div></br>", "<div/>", "<div><object></div></object>",
          "<div><table></div></table>", "<b><div></b>", "<svg><div/></svg>", "<svg><div></div><path/></svg>",
          "<svg><foreignObject><section/></foreignObject></svg>", "<div><!--</div>-->", "<div><a title='</div>'></a>",
          "<div><script></div></script>"}) {
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
