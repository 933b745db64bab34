// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/KindGroups.h>

#include <gtest/gtest.h>

#include <random>

namespace zor {
namespace {

const Kind& kind(std::string_view name) { return *findKind(name); }

std::u16string randomDigits(std::mt19937& random, std::size_t count) {
    std::u16string text(count, u'0');
    for (char16_t& digit : text) digit = static_cast<char16_t>(u'0' + random() % 10);
    return text;
}

// Formatted, digits are valid in their layout exactly when they are valid alone; normalised, the layout gives them
// back.
void expectTwins(const Kind& digitsKind, const Kind& layoutKind, std::size_t count) {
    std::mt19937 random(43);
    int valid = 0;
    for (int round = 0; round < 20000; ++round) {
        const std::u16string digits = randomDigits(random, count);
        const std::u16string layout = digitsKind.format(digits, {});
        EXPECT_EQ(layoutKind.check(layout, {}), digitsKind.check(digits, {}));
        EXPECT_FALSE(layoutKind.check(digits, {}));
        EXPECT_FALSE(digitsKind.check(layout, {}));
        EXPECT_EQ(layoutKind.normalize(layout, {}), digits);
        EXPECT_EQ(layoutKind.format(layout, {}), layout);
        EXPECT_EQ(layoutKind.format(digits, {}), layout);
        valid += digitsKind.check(digits, {}) ? 1 : 0;
    }
    EXPECT_GT(valid, 100);
}

TEST(IdentityKinds, ARegistrationNumberIsTheNationalNumberInItsLayout) {
    expectTwins(kind("national-number"), kind("registration-number"), 11);
}

TEST(IdentityKinds, AnIdCardHasTheDocumentNumberInItsLayout) {
    expectTwins(kind("document-number"), kind("id-card"), 12);
}

TEST(IdentityKinds, NumbersOfThisCenturyCountATwoBefore) {
    EXPECT_TRUE(kind("national-number").check(u"03090368163", {}));
    EXPECT_TRUE(kind("registration-number").check(u"03.09.03-681.63", {}));
}

TEST(IdentityKinds, ADocumentNumberKeepsARemainderOfZeroAndAnAccessNumberDoesNot) {
    EXPECT_TRUE(kind("document-number").check(u"000000000000", {}));
    EXPECT_FALSE(kind("document-number").check(u"000000000097", {}));
    EXPECT_TRUE(kind("access-number").check(u"0000000000097", {}));
    EXPECT_FALSE(kind("access-number").check(u"0000000000000", {}));
}

TEST(IdentityKinds, NothingIsStrippedBeforeACheck) {
    EXPECT_FALSE(kind("national-number").check(u"900117 75352", {}));
    EXPECT_FALSE(kind("access-number").check(u"12345 67890121", {}));
}

}  // namespace
}  // namespace zor
