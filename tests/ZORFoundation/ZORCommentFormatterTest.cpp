// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORCommentFormatter.h>

#include <gtest/gtest.h>
#include <support/AllocationCount.h>

#include <string>

namespace ZORFoundation {
namespace {

TEST(ZORCommentFormatter, StripsEverythingButDecimalDigitsOfAnyScript) {
    EXPECT_EQ(ZORCommentFormatter::strippedStructuredComment(u"+++ 123 / 4567 / 89002 +++"), u"123456789002");
    EXPECT_EQ(ZORCommentFormatter::strippedStructuredComment(u"a\u0663\u00B2\U0001D7D9\xD835!"), u"\u0663\U0001D7D9");
    EXPECT_EQ(ZORCommentFormatter::strippedStructuredComment(u"none"), u"");
    EXPECT_EQ(ZORCommentFormatter::strippedStructuredComment(u""), u"");
}

TEST(ZORCommentFormatter, ShowsACommentInThreeGroupsBetweenMarks) {
    const std::u16string shown = u"+++\u00A0123\u00A0/\u00A04567\u00A0/\u00A089002\u00A0+++";
    EXPECT_EQ(ZORCommentFormatter::formattedStructuredComment(u"123456789002"), shown);
    EXPECT_EQ(ZORCommentFormatter::formattedStructuredComment(u"1234567890029"), shown);
    EXPECT_EQ(ZORCommentFormatter::formattedStructuredComment(shown), shown);
}

TEST(ZORCommentFormatter, ShowsMissingDigitsAsUnderscores) {
    EXPECT_EQ(ZORCommentFormatter::formattedStructuredComment(u"123"),
              u"+++\u00A0123\u00A0/\u00A0____\u00A0/\u00A0_____\u00A0+++");
    EXPECT_EQ(ZORCommentFormatter::formattedStructuredComment(u"+++"), u"");
    EXPECT_EQ(ZORCommentFormatter::formattedStructuredComment(u""), u"");
}

TEST(ZORCommentFormatter, CutsAfterTheTwelfthUnitEvenWithinADigit) {
    EXPECT_EQ(ZORCommentFormatter::formattedStructuredComment(u"12345678901\U0001D7D9"),
              u"+++\u00A0123\u00A0/\u00A04567\u00A0/\u00A08901\xD835\u00A0+++");
}

TEST(ZORCommentFormatter, AllocatesOnlyItsResult) {
    const support::AllocationCount allocations;
    const std::u16string shown = ZORCommentFormatter::formattedStructuredComment(u"+++123/4567/89002+++");
    const std::u16string stripped = ZORCommentFormatter::strippedStructuredComment(u"+++123/4567/89002+++");
    EXPECT_EQ(allocations.count(), 2U);
}

}  // namespace
}  // namespace ZORFoundation
