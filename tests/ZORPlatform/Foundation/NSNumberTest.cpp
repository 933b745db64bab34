// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSNumber.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ZORPlatform {
namespace {

TEST(NSNumber, AnswersAsAnyKind) {
    EXPECT_EQ(NSNumber(true).integerValue(), 1);
    EXPECT_EQ(NSNumber(true).doubleValue(), 1.0);
    EXPECT_TRUE(NSNumber(-3).boolValue());
    EXPECT_FALSE(NSNumber(0.0).boolValue());
    EXPECT_EQ(NSNumber(2.5F).doubleValue(), 2.5);
    EXPECT_EQ(NSNumber(0.1).floatValue(), 0.1F);
}

TEST(NSNumber, CutsRealsTowardsZero) {
    EXPECT_EQ(NSNumber(2.9).integerValue(), 2);
    EXPECT_EQ(NSNumber(-2.9).integerValue(), -2);
}

TEST(NSNumber, SaturatesWhatAnIntegerCannotHold) {
    EXPECT_EQ(NSNumber(1e300).integerValue(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(NSNumber(-HUGE_VALF).integerValue(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(NSNumber(std::numeric_limits<std::uint64_t>::max()).integerValue(),
              std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(NSNumber(std::nan("")).integerValue(), 0);
}

TEST(NSNumber, RemembersItsKind) {
    EXPECT_EQ(NSNumber(1), NSNumber(std::int64_t{1}));
    EXPECT_NE(NSNumber(1), NSNumber(true));
    EXPECT_NE(NSNumber(1), NSNumber(1.0));
    EXPECT_NE(NSNumber(1.0F), NSNumber(1.0));
}

}  // namespace
}  // namespace ZORPlatform
