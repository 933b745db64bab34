// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORFill.h>

#include <gtest/gtest.h>

#include <limits>

namespace ZORFoundation {
namespace {

using ZORFill::zor_nullFilledArrayWithCount;

TEST(ZORFill, HoldsOneNullObjectACount) {
    EXPECT_EQ(zor_nullFilledArrayWithCount(3), (std::vector<NSNull>{NSNull{}, NSNull{}, NSNull{}}));
    EXPECT_EQ(zor_nullFilledArrayWithCount(1).size(), 1U);
}

TEST(ZORFill, IsEmptyForZeroAndLess) {
    EXPECT_TRUE(zor_nullFilledArrayWithCount(0).empty());
    EXPECT_TRUE(zor_nullFilledArrayWithCount(-1).empty());
    EXPECT_TRUE(zor_nullFilledArrayWithCount(std::numeric_limits<std::int64_t>::min()).empty());
}

}  // namespace
}  // namespace ZORFoundation
