// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORCommentFormatter.h>

#include <ZORPlatform/Foundation/Text.h>

#include <gtest/gtest.h>
#include <support/AllocationCount.h>
#include <support/ExactText.h>

#include <cstdint>
#include <random>
#include <string>

namespace ZORFoundation {
namespace {

TEST(ZORCommentFormatter, StripsEverythingButDecimalDigitsOfAnyScript) {
    EXPECT_EQ(ZORCommentFormatter::strippedStructuredComment(u"+++ 123 / 4567 / 89002 +++"), u"123456789002");
    EXPECT_EQ(ZORCommentFormatter::strippedStructuredComment(u"a\u0663\u00B2\U0001D7D9\xD835!"), u"\u0663\U0001D7D9");
    EXPECT_EQ(ZORCommentFormatter::strippedStructuredComment(u"none"), u"");
    EXPECT_EQ(ZORCommentFormatter::strippedStructuredComment(u""), u"");
}

TEST(ZORCommentFormatter, KeepsExactlyTheDecimalDigitsAmongAllScalars) {
    for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
        std::u16string text = u"+1";
        std::u16string digits = u"1";
        ZORPlatform::appendScalar(text, scalar);
        if (ZORPlatform::isDecimalDigit(scalar)) ZORPlatform::appendScalar(digits, scalar);
        text += u"234/5";
        digits += u"2345";
        ASSERT_EQ(ZORCommentFormatter::strippedStructuredComment(text), digits) << static_cast<std::uint32_t>(scalar);
    }
}

TEST(ZORCommentFormatter, ShowsACommentAsItsPaddedPiecesWouldBeJoined) {
    static constexpr std::u16string_view kUnits =
        u"0123456789012345678901234567890123456789+ /\u00A0\u0663\xD835\xDFD9";
    std::mt19937 random(14);
    for (int round = 0; round < 20'000; ++round) {
        std::u16string typed;
        for (std::size_t length = random() % 24; length > 0; --length)
            typed.push_back(kUnits[random() % kUnits.size()]);
        std::u16string padded;
        for (std::size_t at = 0; at < typed.size();) {
            const ZORPlatform::ScalarStep step = ZORPlatform::scalarAt(typed, at);
            if (ZORPlatform::isDecimalDigit(step.scalar)) padded.append(typed, at, step.end - at);
            at = step.end;
        }
        const support::ExactText exact(typed);
        ASSERT_EQ(ZORCommentFormatter::strippedStructuredComment(exact.view()), padded);
        const bool isEmpty = padded.empty();
        padded.resize(12, u'_');
        const std::u16string shown = u"+++\u00A0" + padded.substr(0, 3) + u"\u00A0/\u00A0" + padded.substr(3, 4) +
                                     u"\u00A0/\u00A0" + padded.substr(7) + u"\u00A0+++";
        ASSERT_EQ(ZORCommentFormatter::formattedStructuredComment(exact.view()), isEmpty ? std::u16string() : shown);
    }
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
