// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/TextLayout/TextLayout.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <tests/support/PangoFonts.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace ZORPlatform {
namespace {

const Font kFont{u"DejaVu Sans", 12};
constexpr std::u16string_view kSentence = u"The quick brown fox jumps over the lazy dog";

// What Pango itself says of a text, from a font map of the test's own.
class Pango {
public:
    struct Layout {
        Size size;
        int lines;
    };

    [[nodiscard]] Layout layOut(std::u16string_view text, std::optional<double> width, const Font& font) const {
        PangoLayout* const layout = pango_layout_new(fonts_.context());
        const std::string description = utf8(font.family) + " " + std::to_string(font.pointSize) + "px";
        PangoFontDescription* const parsed = pango_font_description_from_string(description.c_str());
        pango_layout_set_font_description(layout, parsed);
        pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
        if (width) pango_layout_set_width(layout, pango_units_from_double(*width));
        PangoAttrList* const attributes = pango_attr_list_new();
        pango_attr_list_insert(attributes, pango_attr_insert_hyphens_new(FALSE));
        pango_layout_set_attributes(layout, attributes);
        pango_attr_list_unref(attributes);
        const std::string bytes = utf8(text);
        pango_layout_set_text(layout, bytes.c_str(), static_cast<int>(bytes.size()));
        PangoRectangle rectangle;
        pango_layout_get_extents(layout, nullptr, &rectangle);
        const Layout result{{pango_units_to_double(rectangle.width), pango_units_to_double(rectangle.height)},
                            pango_layout_get_line_count(layout)};
        pango_font_description_free(parsed);
        g_object_unref(layout);
        return result;
    }

private:
    PangoFonts fonts_;
};

class TextLayout : public testing::Test {
public:
    TextLayout() { HostEnvironment::setTextLayoutModule(ZOR_TEXT_LAYOUT_FILE); }
};

Size measured(std::u16string_view text, std::optional<double> width = std::nullopt, const Font& font = kFont) {
    const std::optional<Size> size = boundingRectSize(text, width, font);
    EXPECT_TRUE(size.has_value());
    return size.value_or(Size{});
}

TEST_F(TextLayout, WidthsKeepTheirFractions) {
    const Size size = measured(u"Hello");
    EXPECT_NEAR(size.width, 30.416, 0.001);
    EXPECT_NEAR(size.height, 13.969, 0.001);
    EXPECT_NE(size.width, std::floor(size.width));
}

TEST_F(TextLayout, SizesAreThoseOfPango) {
    const Pango pango;
    for (const std::u16string_view text :
         {std::u16string_view(u""), std::u16string_view(u" "), std::u16string_view(u"Hello"), kSentence,
          std::u16string_view(u"two\nlines"), std::u16string_view(u"an end\n"), std::u16string_view(u"\n\n"),
          std::u16string_view(u"a\r\nb\u2028c\u2029d"), std::u16string_view(u"Cr\u00E8me br\u00FBl\u00E9e e\u0301"),
          std::u16string_view(u"AVAVAV fi ffi"), std::u16string_view(u"\u05E9\u05DC\u05D5\u05DD abc"),
          std::u16string_view(u"\u6F22\u5B57 \U0001F600"), std::u16string_view(u"tab\tulator  spaces   ")}) {
        for (const double pointSize : {9.5, 12.0, 40.0}) {
            for (const std::optional<double> width :
                 {std::optional<double>(), std::optional<double>(0), std::optional<double>(20),
                  std::optional<double>(77.25), std::optional<double>(1000)}) {
                const Font font{u"DejaVu Sans", pointSize};
                EXPECT_EQ(measured(text, width, font), pango.layOut(text, width, font).size)
                    << utf8(text) << " " << pointSize << " " << width.value_or(-1);
            }
        }
    }
}

TEST_F(TextLayout, LinesAreBrokenBetweenWords) {
    const Pango pango;
    const double lineHeight = measured(u"x").height;
    int linesBefore = std::numeric_limits<int>::max();
    for (double width = 0; width < 300; width += 7.5) {
        const Size size = measured(kSentence, width);
        const int lines = static_cast<int>(std::lround(size.height / lineHeight));
        EXPECT_EQ(lines, pango.layOut(kSentence, width, kFont).lines);
        EXPECT_LE(lines, linesBefore);
        if (width > 20) {
            EXPECT_LE(size.width, width);
        }
        linesBefore = lines;
    }
    EXPECT_EQ(linesBefore, 1);
}

TEST_F(TextLayout, AWordThatIsTooWideIsBrokenWithin) {
    const double letter = measured(u"W").width;
    const Size size = measured(u"WWWWWW", 2 * letter + 1);
    EXPECT_NEAR(size.width, 2 * letter, 0.01);
    EXPECT_NEAR(size.height, 3 * measured(u"W").height, 0.01);
    EXPECT_NEAR(measured(u"WWW", 0).height, 3 * measured(u"W").height, 0.01);
}

TEST_F(TextLayout, ATextFitsItsOwnWidth) {
    const Size size = measured(kSentence);
    EXPECT_EQ(measured(kSentence, size.width), size);
    EXPECT_GT(measured(kSentence, size.width - 0.01).height, size.height);
}

TEST_F(TextLayout, WidthsOutOfRangeAreUnlimitedOrNone) {
    const Size unlimited = measured(kSentence);
    for (const double width : {1e7, std::numeric_limits<double>::max(), std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(measured(kSentence, width), unlimited) << width;
    }
    const Size narrowest = measured(kSentence, 0);
    for (const double width : {-1.0, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(measured(kSentence, width), narrowest) << width;
    }
}

TEST_F(TextLayout, AFontOfNoSizeMeasuresNothing) {
    for (const double pointSize : {0.0, -12.0, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(measured(kSentence, std::nullopt, {u"DejaVu Sans", pointSize}), Size{}) << pointSize;
    }
    EXPECT_EQ(measured(u"x", std::nullopt, {u"DejaVu Sans", 1e9}), measured(u"x", std::nullopt, {u"DejaVu Sans", 1e4}));
}

TEST_F(TextLayout, AnUnknownFamilyIsReplaced) {
    EXPECT_GT(measured(u"Hello", std::nullopt, {u"No Such Family", 12}).width, 0);
    EXPECT_GT(measured(u"Hello", std::nullopt, {u"", 12}).width, 0);
}

TEST_F(TextLayout, WhatIsNoTextTakesNoRoomOrThatOfAReplacement) {
    using namespace std::string_view_literals;
    EXPECT_EQ(measured(u"a\0b"sv), measured(u"ab"));
    EXPECT_EQ(measured(u"\xD83D"), measured(u"\uFFFD"));
}

// Pango counts in 32 bits, of which a text of a million characters needs more.
TEST_F(TextLayout, LongLinesAndManyLinesAreMeasuredToTheirEnd) {
    const std::u16string word = u"Wide ";
    std::u16string line;
    for (int count = 0; count < 60'000; ++count) line += word;
    EXPECT_NEAR(measured(line).width, 60'000 * measured(word).width, 60'000 * 0.01);
    const std::u16string lines(200'000, u'\n');
    EXPECT_NEAR(measured(lines).height, 200'001 * measured(u"").height, 1);
}

TEST_F(TextLayout, ThreadsMeasureTheSame) {
    const Size expected = measured(kSentence, 100);
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round) EXPECT_EQ(measured(kSentence, 100), expected);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

// In a process of its own, where no module is loaded yet.
class TextLayoutDeathTest : public testing::Test {
public:
    TextLayoutDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(TextLayoutDeathTest, WithoutTheModuleThereIsNoSizeUntilThereIsOne) {
    const auto measureWith = [](const char* module) {
        HostEnvironment::setTextLayoutModule(module);
        return boundingRectSize(u"Hello", std::nullopt, kFont).has_value();
    };
    EXPECT_EXIT(std::_Exit(measureWith("/nowhere/module.so") || measureWith("libc.so.6") ? 1 : 0),
                testing::ExitedWithCode(0), "");
    EXPECT_EXIT(std::_Exit(!measureWith("/nowhere/module.so") && measureWith(ZOR_TEXT_LAYOUT_FILE) ? 0 : 1),
                testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace ZORPlatform
