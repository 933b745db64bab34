// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/StringMeasuring.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <gtest/gtest.h>

namespace ZORFoundation {
namespace {

using StringExtension::calculatedSize;
using StringExtension::heightWithConstrainedWidth;
using ZORPlatform::HostEnvironment;

const Font kFont{u"DejaVu Sans", 12};

class StringMeasuring : public testing::Test {
public:
    StringMeasuring() { HostEnvironment::setTextLayoutModule(ZOR_TEXT_LAYOUT_FILE); }
};

TEST_F(StringMeasuring, TheSizeOfATextHasFractions) {
    const Size size = calculatedSize(u"Hello", kFont);
    EXPECT_NEAR(size.width, 30.416, 0.001);
    EXPECT_NEAR(size.height, 13.969, 0.001);
}

TEST_F(StringMeasuring, AConstrainedWidthMakesMoreLines) {
    const Size line = calculatedSize(u"one two", kFont);
    const Size word = calculatedSize(u"one ", kFont);
    EXPECT_EQ(heightWithConstrainedWidth(u"one two", line.width, kFont), line.height);
    EXPECT_NEAR(heightWithConstrainedWidth(u"one two", word.width, kFont), 2 * line.height, 0.001);
    EXPECT_EQ(calculatedSize(u"one two", kFont, word.width).height,
              heightWithConstrainedWidth(u"one two", word.width, kFont));
    EXPECT_LT(calculatedSize(u"one two", kFont, word.width).width, word.width);
}

TEST_F(StringMeasuring, TheEmptyTextHasTheHeightOfALine) {
    EXPECT_EQ(calculatedSize(u"", kFont), (Size{0, calculatedSize(u"x", kFont).height}));
    EXPECT_EQ(heightWithConstrainedWidth({}, 10, kFont), calculatedSize(u"x", kFont).height);
}

// In a process of its own, where no module is loaded yet.
class StringMeasuringDeathTest : public testing::Test {
public:
    StringMeasuringDeathTest() {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        HostEnvironment::setTextLayoutModule("/nowhere/module.so");
    }
};

TEST_F(StringMeasuringDeathTest, WithoutTheModuleTheOperationsSaySo) {
    EXPECT_DEATH((void)heightWithConstrainedWidth(u"Hello", 100, kFont),
                 "^heightWithConstrainedWidth\\(_:font:\\): .*libZORFoundationTextLayout\\.so");
    EXPECT_DEATH((void)calculatedSize(u"Hello", kFont),
                 "^calculatedSize\\(withFont:fixedWidth:\\): .*libZORFoundationTextLayout\\.so");
}

}  // namespace
}  // namespace ZORFoundation
