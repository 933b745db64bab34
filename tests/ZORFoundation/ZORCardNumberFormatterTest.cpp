// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORCardNumberFormatter.h>

#include <ZORPlatform/Foundation/Text.h>

#include <gtest/gtest.h>
#include <support/AllocationCount.h>
#include <support/ExactText.h>
#include <support/IdentifierModel.h>

#include <algorithm>
#include <random>
#include <string>

namespace ZORFoundation {
namespace {

using Card = ZORCardNumberFormatter;

void expectAgreement(std::u16string_view text) {
    const support::ExactText exact(text);
    const std::u16string_view view = exact.view();
    ASSERT_EQ(Card::isValidCardNumber(view), support::literalIsValidCardNumber(text)) << ::testing::PrintToString(text);
    ASSERT_EQ(Card::isValidCardNumber(view), Card::explainCardNumber(view).isValid());
}

TEST(ZORCardNumberFormatter, StripsOrdinaryAndNoBreakSpacesOnly) {
    EXPECT_EQ(Card::strippedCardNumber(u" 67\u00A003-4 "), u"6703-4");
    EXPECT_EQ(Card::strippedCardNumber(u""), u"");
}

TEST(ZORCardNumberFormatter, ShowsACardNumberInTwentyOneUnitsWithoutStripping) {
    EXPECT_EQ(Card::formattedCardNumber(u"67034444444444449"), u"6703\u00A04444\u00A04444\u00A04444\u00A09");
    EXPECT_EQ(Card::formattedCardNumber(u"67034444444444449123"), u"6703\u00A04444\u00A04444\u00A04444\u00A09");
    EXPECT_EQ(Card::formattedCardNumber(u"6703 4"), u"6703\u00A0 4  \u00A0    \u00A0    \u00A0 ");
    EXPECT_EQ(Card::formattedCardNumber(u""), u"    \u00A0    \u00A0    \u00A0    \u00A0 ");
}

TEST(ZORCardNumberFormatter, ShowsACardNumberAsItGrows) {
    EXPECT_EQ(Card::formattedCardNumberOptimal(u""), u"");
    EXPECT_EQ(Card::formattedCardNumberOptimal(u"1234"), u"1234");
    EXPECT_EQ(Card::formattedCardNumberOptimal(u"12345"), u"1234\u00A05");
    EXPECT_EQ(Card::formattedCardNumberOptimal(u"12 34\u00A056789"), u"1234\u00A05678\u00A09");
    EXPECT_EQ(Card::formattedCardNumberOptimal(u"123456789012345678"), u"1234\u00A05678\u00A09012\u00A03456\u00A07");
}

TEST(ZORCardNumberFormatter, EndsACreditCardWithAnOrdinarySpaceAndTheLastDigit) {
    EXPECT_EQ(Card::formattedCreditCard(u"6703 4444 4444 4444 9"), u"6703\u00A04444\u00A04444\u00A04444 9");
    EXPECT_EQ(Card::formattedCreditCard(u"6703444444444444"), u"6703\u00A04444\u00A04444\u00A04444  ");
    EXPECT_EQ(Card::formattedCreditCard(u"\u00A067"), u"\u00A067 \u00A0    \u00A0    \u00A0      ");
    EXPECT_EQ(Card::formattedCreditCard(u""), u"    \u00A0    \u00A0    \u00A0      ");
}

TEST(ZORCardNumberFormatter, ShowsACardNumberAsThePiecesWouldBeJoined) {
    static constexpr std::u16string_view kUnits = u"01234567890123456789aZ  \u00A0#-\u0663";
    std::mt19937 random(13);
    for (int round = 0; round < 20'000; ++round) {
        std::u16string typed;
        for (std::size_t length = random() % 26; length > 0; --length)
            typed.push_back(kUnits[random() % kUnits.size()]);
        const support::ExactText exact(typed);

        const auto joined = [](std::u16string padded, std::u16string_view last) {
            padded.resize(17, u' ');
            std::u16string shown = padded.substr(0, 4);
            for (const std::size_t at : {4U, 8U, 12U}) shown += u'\u00A0' + padded.substr(at, 4);
            return shown.append(last) + padded[16];
        };
        ASSERT_EQ(Card::formattedCardNumber(exact.view()), joined(typed, u"\u00A0"));
        ASSERT_EQ(Card::formattedCreditCard(exact.view()), joined(support::without(typed, u" "), u" "));

        const std::u16string stripped = support::without(typed, u" \u00A0");
        ASSERT_EQ(Card::strippedCardNumber(exact.view()), stripped);
        std::u16string grown;
        for (std::size_t at = 0; at < std::min<std::size_t>(stripped.size(), 17); ++at) {
            if (at > 0 && at % 4 == 0) grown += u'\u00A0';
            grown += stripped[at];
        }
        ASSERT_EQ(Card::formattedCardNumberOptimal(exact.view()), grown);
    }
}

TEST(ZORCardNumberFormatter, AcceptsSeventeenDigitsWithALuhnSum) {
    EXPECT_TRUE(Card::isValidCardNumber(u"67034444444444441"));
    EXPECT_TRUE(Card::isValidCardNumber(u"6703 4444\u00A04444 4444 1"));
    EXPECT_FALSE(Card::isValidCardNumber(u"67034444444444442"));
    EXPECT_FALSE(Card::isValidCardNumber(u"6703-4444-4444-4444-1"));
    EXPECT_FALSE(Card::isValidCardNumber(u""));
}

TEST(ZORCardNumberFormatter, RejectsSixteenAndEighteenDigitsWithALuhnSum) {
    EXPECT_FALSE(Card::isValidCardNumber(u"9616874358231764"));
    EXPECT_FALSE(Card::isValidCardNumber(u"836100387530987988"));
}

TEST(ZORCardNumberFormatter, CountsDigitsOfOtherScriptsAsZero) {
    EXPECT_TRUE(Card::isValidCardNumber(std::u16string(17, u'\u0669')));
    EXPECT_TRUE(
        Card::isValidCardNumber(u"\uFF19"
                                u"0000000000000000"));
    // A digit of two units takes two places, and both count as 0.
    EXPECT_TRUE(Card::isValidCardNumber(u"\U0001D7D9000000000000000"));
    EXPECT_FALSE(
        Card::isValidCardNumber(u"\xD835"
                                u"0000000000000000"));
}

TEST(ZORCardNumberFormatter, AcceptsExactlyOneLastDigitForAnySixteenDigits) {
    std::mt19937 random(7);
    for (int round = 0; round < 5000; ++round) {
        std::u16string text;
        for (int i = 0; i < 17; ++i) text.push_back(static_cast<char16_t>(u'0' + random() % 10));
        int accepted = 0;
        for (text[16] = u'0'; text[16] <= u'9'; ++text[16]) {
            accepted += Card::isValidCardNumber(text) ? 1 : 0;
            ASSERT_NO_FATAL_FAILURE(expectAgreement(text));
        }
        ASSERT_EQ(accepted, 1);
    }
}

TEST(ZORCardNumberFormatter, AgreesWithTheRulesForEveryScalarAmongTheDigits) {
    for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
        std::u16string text = u"0000000";
        ZORPlatform::appendScalar(text, scalar);
        text.resize(17, u'0');
        ASSERT_NO_FATAL_FAILURE(expectAgreement(text));
    }
}

TEST(ZORCardNumberFormatter, AgreesWithTheRulesOnRandomSpellings) {
    static constexpr std::u16string_view kUnits =
        u"0123456789012345678901234567890123456789  \u00A0\u0663\xD835\xDFD9-";
    std::mt19937 random(8);
    for (int round = 0; round < 50'000; ++round) {
        std::u16string text;
        for (std::size_t length = 14 + random() % 8; length > 0; --length)
            text.push_back(kUnits[random() % kUnits.size()]);
        ASSERT_NO_FATAL_FAILURE(expectAgreement(text));
    }
}

TEST(ZORCardNumberFormatter, ExplainsTheFirstRuleThatACardNumberBreaks) {
    const auto explain = [](std::u16string_view text) { return Card::explainCardNumber(text); };
    EXPECT_EQ(explain(u"67034444444444441"), Explanation{});
    EXPECT_EQ(explain(u""), (Explanation{BrokenRule::length, 0, 0, 0, 17}));
    EXPECT_EQ(explain(u"6703 4444"), (Explanation{BrokenRule::length, 9, 9, 8, 17}));
    EXPECT_EQ(explain(u"6703 4444 4444 4444 91"), (Explanation{BrokenRule::length, 21, 21, 18, 17}));
    EXPECT_EQ(explain(u"6703 4444 4444 444x 9"), (Explanation{BrokenRule::unexpectedCharacter, 18, 18, 0, 0}));
    EXPECT_EQ(explain(u"6703 4444 4444 4444 2"), (Explanation{BrokenRule::checkDigits, 20, 20, 0, 0}));
    // Two units, one character.
    EXPECT_EQ(explain(u"\U0001D7D900000000000000x"), (Explanation{BrokenRule::unexpectedCharacter, 16, 15, 0, 0}));
}

TEST(ZORCardNumberFormatter, AllocatesNothingButResults) {
    const std::u16string endless(1'000'000, u' ');
    support::AllocationCount allocations;
    for (const std::u16string_view text :
         {std::u16string_view(u"67034444444444449"), std::u16string_view(u"6703 4444 4444 4444 8"),
          std::u16string_view(endless), std::u16string_view(u"\u0669")}) {
        static_cast<void>(Card::isValidCardNumber(text));
        static_cast<void>(Card::explainCardNumber(text));
    }
    EXPECT_EQ(allocations.count(), 0U);
    const std::u16string plain = Card::formattedCardNumber(u"67034444444444449");
    const std::u16string grown = Card::formattedCardNumberOptimal(u"6703 4444 4444 4444 9");
    const std::u16string credit = Card::formattedCreditCard(u"67034444444444449");
    const std::u16string stripped = Card::strippedCardNumber(u"6703 4444 4444 4444 9");
    EXPECT_EQ(allocations.count(), 4U);
}

}  // namespace
}  // namespace ZORFoundation
