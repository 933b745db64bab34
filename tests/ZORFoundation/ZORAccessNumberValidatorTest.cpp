// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORAccessNumberValidator.h>

#include <gtest/gtest.h>

namespace ZORFoundation {
namespace {

TEST(ZORAccessNumberValidator, ReplacesARemainderOfZeroBy97) {
    EXPECT_TRUE(ZORAccessNumberValidator::isAccessNumberValid(u"0000000000097"));
    EXPECT_FALSE(ZORAccessNumberValidator::isAccessNumberValid(u"0000000000000"));
}

}  // namespace
}  // namespace ZORFoundation
