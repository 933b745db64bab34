// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/DataExtension.h>

#include <gtest/gtest.h>

#include <vector>

namespace ZORFoundation {
namespace {

using Units = NSByteCountFormatterUnits;

TEST(DataExtension, HexStringIsUpperCase) {
    EXPECT_EQ(DataExtension::hexString(std::vector<std::uint8_t>{0x0A, 0xFF}), u"0AFF");
    EXPECT_EQ(DataExtension::hexString({}), u"");
}

std::int64_t sizeOf(std::size_t length, Units units) {
    return DataExtension::size(std::vector<std::uint8_t>(length), units);
}

TEST(DataExtension, SizeIsTheWholeNumberShown) {
    EXPECT_EQ(sizeOf(0, Units::useKB), 0);
    EXPECT_EQ(sizeOf(501, Units::useBytes), 501);
    EXPECT_EQ(sizeOf(501, Units::useKB), 1);
    EXPECT_EQ(sizeOf(2500, Units::useKB), 2);
    EXPECT_EQ(sizeOf(20480, Units::useKB), 20);
    EXPECT_EQ(sizeOf(2'000'000, Units::useMB), 2);
}

TEST(DataExtension, SizeIsZeroWhenTheTextHasASeparator) {
    EXPECT_EQ(sizeOf(1234, Units::useBytes), 0);
    EXPECT_EQ(sizeOf(999'500, Units::useKB), 0);
    EXPECT_EQ(sizeOf(1'060'000, Units::useMB), 0);
}

}  // namespace
}  // namespace ZORFoundation
