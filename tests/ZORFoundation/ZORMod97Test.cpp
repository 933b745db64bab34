// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORMod97.h>

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace ZORFoundation {
namespace {

TEST(ZORMod97, EmptyTextIsZero) { EXPECT_EQ(ZORMod97::modulo97(u""), 0); }

TEST(ZORMod97, ShortNumbersGiveTheirRemainder) {
    EXPECT_EQ(ZORMod97::modulo97(u"97"), 0);
    EXPECT_EQ(ZORMod97::modulo97(u"98"), 1);
    EXPECT_EQ(ZORMod97::modulo97(u"96"), 96);
}

TEST(ZORMod97, AnyNumberOfDigitsGivesTheTrueRemainder) {
    std::mt19937 random(97);
    for (int round = 0; round < 2000; ++round) {
        std::u16string digits;
        unsigned remainder = 0;
        const std::size_t length = random() % 40;
        for (std::size_t i = 0; i < length; ++i) {
            const auto digit = static_cast<unsigned>(random() % 10);
            digits.push_back(static_cast<char16_t>(u'0' + digit));
            remainder = (remainder * 10 + digit) % 97;
        }
        EXPECT_EQ(ZORMod97::modulo97(digits), static_cast<int>(remainder));
    }
}

TEST(ZORMod97, AMinusSignAtTheBeginningMakesTheRemainderNegative) {
    EXPECT_EQ(ZORMod97::modulo97(u"-98"), -1);
    EXPECT_EQ(ZORMod97::modulo97(u" \u00A0-100"), -3);
    EXPECT_EQ(ZORMod97::modulo97(u"-1000001000000"), -(1000001000000 % 97));
}

TEST(ZORMod97, AnOddUnitEndsTheReadingOfItsPieceOnly) {
    EXPECT_EQ(ZORMod97::modulo97(u"12x4567"
                                 u"1"),
              121 % 97);
    EXPECT_EQ(ZORMod97::modulo97(u"1234567-"), 1234567 % 97);
}

}  // namespace
}  // namespace ZORFoundation
