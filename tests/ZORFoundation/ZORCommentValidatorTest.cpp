// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORCommentValidator.h>

#include <gtest/gtest.h>

namespace ZORFoundation {
namespace {

TEST(ZORCommentValidator, ReplacesARemainderOfZeroBy97) {
    EXPECT_TRUE(ZORCommentValidator::isValidStructuredComment(u"123456789002"));
    EXPECT_TRUE(ZORCommentValidator::isValidStructuredComment(u"000000000097"));
    EXPECT_FALSE(ZORCommentValidator::isValidStructuredComment(u"000000000000"));
}

TEST(ZORCommentValidator, RejectsTheDisplayForm) {
    EXPECT_FALSE(
        ZORCommentValidator::isValidStructuredComment(u"+++\u00A0123\u00A0/\u00A04567\u00A0/\u00A089002\u00A0+++"));
}

}  // namespace
}  // namespace ZORFoundation
