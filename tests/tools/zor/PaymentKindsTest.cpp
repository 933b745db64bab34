// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/KindGroups.h>

#include <ZORFoundation/ZORCommentFormatter.h>
#include <ZORFoundation/ZORCommentValidator.h>

#include <gtest/gtest.h>

#include <random>

namespace zor {
namespace {

using ZORFoundation::BrokenRule;
using ZORFoundation::ZORCommentFormatter;
using ZORFoundation::ZORCommentValidator;

const Kind& kind(std::string_view name) { return *findKind(name); }

TEST(PaymentKinds, ACommentIsCheckedWithoutItsMarks) {
    std::mt19937 random(5);
    static constexpr std::u16string_view kUnits = u"0123456789+/ \u00A0\u0663a";
    for (int round = 0; round < 20000; ++round) {
        std::u16string text = u"123456789002";
        for (std::size_t edits = random() % 4; edits > 0; --edits) {
            text.insert(random() % (text.size() + 1), 1, kUnits[random() % kUnits.size()]);
        }
        const std::u16string digits = ZORCommentFormatter::strippedStructuredComment(text);
        EXPECT_EQ(kind("comment").check(text, {}), ZORCommentValidator::isValidStructuredComment(digits));
        EXPECT_EQ(kind("comment").check(text, {.exact = true}), ZORCommentValidator::isValidStructuredComment(text));
    }
}

TEST(PaymentKinds, ADisplayedCommentIsValidUnlessTakenExactly) {
    const std::u16string shown = ZORCommentFormatter::formattedStructuredComment(u"123456789002");
    EXPECT_TRUE(kind("comment").check(shown, {}));
    EXPECT_FALSE(kind("comment").check(shown, {.exact = true}));
    EXPECT_EQ(kind("comment").explain(shown, {.exact = true}).rule, BrokenRule::length);
}

TEST(PaymentKinds, PositionsInACommentAreThoseOfTheWrittenText) {
    EXPECT_EQ(kind("comment").explain(u"+++123/4567/89003+++", {}).position, 15U);
    EXPECT_EQ(kind("comment").explain(u"+++123/4567", {}).position, 11U);
    EXPECT_EQ(kind("comment").explain(u"+++123/4567/890021+++", {}).position, 17U);
    EXPECT_EQ(kind("comment").explain(u"+++123/4567/8900\u0662+++", {}).rule, BrokenRule::unexpectedCharacter);
    EXPECT_EQ(kind("comment").explain(u"+++123/4567/8900\u0662+++", {}).position, 16U);
}

TEST(PaymentKinds, ACommentThatIsStillTypedShowsWhatIsMissing) {
    EXPECT_EQ(kind("comment").format(u"+++123/4", {}), u"+++\u00A0123\u00A0/\u00A04___\u00A0/\u00A0_____\u00A0+++");
    EXPECT_EQ(kind("comment").format(u"no digits", {}), u"");
}

TEST(PaymentKinds, ACardIsShownAsItGrows) {
    EXPECT_EQ(kind("card").format(u"123456789", {}), u"1234\u00A05678\u00A09");
    EXPECT_FALSE(kind("card").check(u"6703-4444-4444-4444-1", {}));
    EXPECT_TRUE(kind("card").check(u"6703\u00A04444 444444441", {}));
}

TEST(PaymentKinds, AReferenceMayBeEmpty) {
    EXPECT_TRUE(kind("bcmc").check(u"", {}));
    EXPECT_TRUE(kind("bcmc").check(u"a\\b 1", {}));
    EXPECT_FALSE(kind("bcmc").check(u"a-b", {}));
}

}  // namespace
}  // namespace zor
