// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/KindGroups.h>

#include <ZORFoundation/ZORAccountNumberFormatter.h>
#include <ZORFoundation/ZORAccountNumberValidator.h>

#include <gtest/gtest.h>

#include <random>

namespace zor {
namespace {

using Formatter = ZORFoundation::ZORAccountNumberFormatter;
using Validator = ZORFoundation::ZORAccountNumberValidator;

const Kind& kind(std::string_view name) { return *findKind(name); }

std::u16string randomText(std::mt19937& random) {
    static constexpr std::u16string_view kUnits = u"0123456789BEbe - \u00A0\u00E9/:z{\u0080\uFFFF";
    std::u16string text = random() % 2 == 0 ? u"BE68539007547034" : u"539007547034";
    for (std::size_t edits = random() % 4; edits > 0; --edits) {
        text.insert(random() % (text.size() + 1), 1, kUnits[random() % kUnits.size()]);
        if (random() % 2 == 0) text.erase(random() % text.size(), 1);
    }
    return text;
}

TEST(AccountKinds, CheckTheStrippedText) {
    std::mt19937 random(23);
    for (int round = 0; round < 20000; ++round) {
        const std::u16string text = randomText(random);
        const std::u16string stripped = Formatter::strippedAccountNumber(text);
        EXPECT_EQ(kind("iban").check(text, {}), Validator::isValidIban(stripped));
        EXPECT_EQ(kind("bban").check(text, {}), Validator::isValidBban(stripped));
        EXPECT_EQ(kind("account").check(text, {}),
                  Validator::isValidIban(stripped) || Validator::isValidBban(stripped));
        EXPECT_EQ(kind("iban").check(text, {.exact = true}), Validator::isValidIban(text));
        EXPECT_EQ(kind("bban").check(text, {.exact = true}), Validator::isValidBban(text));
    }
}

TEST(AccountKinds, AnExplanationIsValidExactlyWhenTheCheckIs) {
    std::mt19937 random(29);
    for (int round = 0; round < 20000; ++round) {
        const std::u16string text = randomText(random);
        for (const Kind& each : kAccountKinds.kinds) {
            for (const bool exact : {false, true}) {
                const auto explanation = each.explain(text, {.exact = exact});
                EXPECT_EQ(explanation.isValid(), each.check(text, {.exact = exact})) << each.name;
                EXPECT_LE(explanation.position, text.size()) << each.name;
            }
        }
    }
}

TEST(AccountKinds, PositionsAreThoseOfTheWrittenText) {
    EXPECT_EQ(kind("iban").explain(u"B-E 68 5390", {}).position, 11U);
    EXPECT_EQ(kind("iban").explain(u" N-L 91ABNA0417164301", {}).position, 5U);
    EXPECT_EQ(kind("iban").explain(u"NL91 ABNA_0417164300", {}).position, 9U);
    EXPECT_EQ(kind("bban").explain(u"539-0075470-35", {}).position, 12U);
    EXPECT_EQ(kind("iban").explain(u"--", {}).rule, ZORFoundation::BrokenRule::empty);
}

TEST(AccountKinds, AnAccountIsExplainedInTheFormItBeginsLike) {
    EXPECT_EQ(kind("account").explain(u"539", {}).rule, ZORFoundation::BrokenRule::length);
    EXPECT_EQ(kind("account").explain(u"BE68539", {}).rule, ZORFoundation::BrokenRule::countryLength);
    EXPECT_EQ(kind("account").explain(u"", {}).rule, ZORFoundation::BrokenRule::empty);
}

}  // namespace
}  // namespace zor
