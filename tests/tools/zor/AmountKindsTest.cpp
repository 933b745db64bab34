// SPDX-License-Identifier: Apache-2.0
#include "ZorProcess.h"

#include <tools/zor/Kind.h>

#include <gtest/gtest.h>

namespace zor::testing {
namespace {

const Kind& amount() { return *findKind("amount"); }

TEST(AmountKinds, CheckTheShapeWhileTyped) {
    for (const std::u16string_view text : {u"12,", u"12,5", u"", u"12 ", u"1 234,56", u"12,345", u"-5"}) {
        EXPECT_EQ(amount().check(text, {}), amount().explain(text, {}).isValid());
    }
    EXPECT_TRUE(amount().check(u"12,5", {}));
    EXPECT_FALSE(amount().check(u"1 234,56", {}));
}

TEST(AmountKinds, StoreThePlainNumber) {
    EXPECT_EQ(amount().normalize(u"1\u00A0234,50", {}), u"1234.5");
    EXPECT_EQ(amount().normalize(u"abc", {}), u"NaN");
}

TEST(AmountKinds, DisplayInTheWritingOfALocale) {
    EXPECT_EQ(amount().format(u"1234,565", {}), u"1\u00A0234,56");
    EXPECT_EQ(amount().format(u"1234,565", {.locale = "en_GB"}), u"1\u00A0234.56");
}

TEST(AmountKinds, AnswerOnTheCommandLine) {
    const auto shown = runZor({"format", "amount", "--locale=en_US", "1234,5"});
    EXPECT_EQ(shown.out, "1\u00A0234.50\n");
    const auto explained = runZor({"explain", "amount", "1234567890", "12,345", "12 "});
    EXPECT_EQ(explained.out,
              "1234567890: invalid, integerDigits: found 10 digits, expected at most 9\n"
              "12,345: invalid, decimals: found 3 digits, expected at most 2\n"
              "12 : invalid, unexpectedCharacter: there is a character that does not belong there, at position 2\n");
    EXPECT_EQ(explained.exitCode, 1);
}

}  // namespace
}  // namespace zor::testing
