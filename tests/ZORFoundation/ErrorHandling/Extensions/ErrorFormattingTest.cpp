// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ErrorHandling/Extensions/ErrorFormatting.h>

#include <gtest/gtest.h>

#include <string>

namespace ZORFoundation {
namespace {

TEST(ErrorFormatting, TheCodeStandsInParenthesesAfterOneBlank) {
    EXPECT_EQ(ErrorFormatting::errorMessageWith(u"Timeout", u"UR4122"), u"Timeout (UR4122)");
}

TEST(ErrorFormatting, AnAbsentPartIsWrittenAsNullAndAnEmptyOneIsNot) {
    EXPECT_EQ(ErrorFormatting::errorMessageWith(std::nullopt, std::nullopt), u"(null) ((null))");
    EXPECT_EQ(ErrorFormatting::errorMessageWith(std::nullopt, u"UR4122"), u"(null) (UR4122)");
    EXPECT_EQ(ErrorFormatting::errorMessageWith(u"Timeout", std::nullopt), u"Timeout ((null))");
    EXPECT_EQ(ErrorFormatting::errorMessageWith(u"", u""), u" ()");
}

TEST(ErrorFormatting, NothingInThePartsIsInterpreted) {
    EXPECT_EQ(ErrorFormatting::errorMessageWith(u"%@ %ld", u"%@"), u"%@ %ld (%@)");
    const std::u16string odd{u'\0', char16_t{0xDC00}};
    EXPECT_EQ(ErrorFormatting::errorMessageWith(odd, odd), odd + u" (" + odd + u")");
}

}  // namespace
}  // namespace ZORFoundation
