// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Validation/InputValidator.h>

#include <ZORPlatform/Foundation/NSException.h>

#include <gtest/gtest.h>
#include <support/AllocationCount.h>

#include <limits>
#include <string>

namespace ZORFoundation {
namespace {

using Validator = InputValidator;

Explanation broken(BrokenRule rule, std::size_t position, std::size_t character) {
    return {rule, position, character, 0, 0};
}

TEST(InputValidator, EmailsNeedAnAtSignAndALabelOfLettersAtTheEnd) {
    for (const std::u16string_view text :
         {u"jan.smet@zor.be", u"a@b..be", u"a@-.be", u"a@..be", u"A_%+-1@B-2.museum"}) {
        EXPECT_TRUE(Validator::isValidEmail(text));
    }
    for (const std::u16string_view text :
         {u"", u"jan", u"@zor.be", u"jan@", u"jan@be", u"jan@.be", u"jan@zor.b", u"jan@zor.b3", u"jan@zor.be\n",
          u"jan@zor@be.be", u"jàn@zor.be", u"jan@zor.bé", u"jan smet@zor.be", u"a.b@c"}) {
        EXPECT_FALSE(Validator::isValidEmail(text));
    }
}

TEST(InputValidator, MobilePhoneNumbersTakeOneSeparatorBetweenDigits) {
    for (const std::u16string_view text :
         {u"0475123456", u"+32475123456", u"+ 0475123456", u" 0475 12 34 56", u"0475 - 123456", u"0475/12.34,56",
          u"012345678901234", u"0475123456\n", u"0475123456\u2028", u"\u0660475123456", u"0475\u00A0123456",
          u"0475123456-"}) {
        EXPECT_TRUE(Validator::isValidMobilePhoneNumber(text));
    }
    for (const std::u16string_view text :
         {u"", u"+", u"047512345", u"0123456789012345", u"0475--123456", u"(0475)123456", u"0475123456  -",
          u"++0475123456", u"  0475123456", u"0475   123456", u"-0475123456", u"0475123456+"}) {
        EXPECT_FALSE(Validator::isValidMobilePhoneNumber(text));
    }
}

TEST(InputValidator, BoxNumbersTakeTheWholeRangeFromCapitalAToSmallZ) {
    for (const std::u16string_view text : {u"1", u"bus 12", u"_", u"[\\]^_`", u"123456789", u"\u0663", u" "}) {
        EXPECT_TRUE(Validator::isValidBoxNumber(text));
    }
    EXPECT_TRUE(
        Validator::isValidBoxNumber(u"\U0001D7CE\U0001D7CE\U0001D7CE\U0001D7CE\U0001D7CE"
                                    u"\U0001D7CE\U0001D7CE\U0001D7CE\U0001D7CE"));
    for (const std::u16string_view text : {u"", u"1234567890", u"b-1", u"1/2", u"é", u"1\n"}) {
        EXPECT_FALSE(Validator::isValidBoxNumber(text));
    }
}

TEST(InputValidator, HouseNumbersDoNotBeginWithZero) {
    for (const std::u16string_view text : {u"1", u"12A", u"1A_b", u"12345"}) {
        EXPECT_TRUE(Validator::isValidHouseNumber(text));
    }
    for (const std::u16string_view text : {u"", u"0", u"012", u"A1", u"123456", u"12-A", u"12 A"}) {
        EXPECT_FALSE(Validator::isValidHouseNumber(text));
    }
}

TEST(InputValidator, StreetsHaveAtMostThirtyFiveCharacters) {
    EXPECT_TRUE(Validator::isValidStreet(u"Rue de l’Été 12-14"));
    EXPECT_TRUE(Validator::isValidStreet(std::u16string(35, u'é')));
    EXPECT_FALSE(Validator::isValidStreet(std::u16string(36, u'é')));
    EXPECT_FALSE(Validator::isValidStreet(u"Rue de l'Eté"));
    EXPECT_FALSE(Validator::isValidStreet(u"e\u0301"));
    EXPECT_FALSE(Validator::isValidStreet(u""));
}

TEST(InputValidator, NamesTakeTheTypographicApostropheOnly) {
    EXPECT_TRUE(Validator::isValidName(u"D’Hondt, Zoë"));
    EXPECT_TRUE(Validator::isValidName(std::u16string(100'000, u'a')));
    EXPECT_FALSE(Validator::isValidName(u"D'Hondt"));
    EXPECT_FALSE(Validator::isValidName(u"Jan2"));
    EXPECT_FALSE(Validator::isValidName(u""));
}

TEST(InputValidator, LimitsOfNamesAreBothIncluded) {
    EXPECT_TRUE(Validator::isValidName(u"", CharacterLimits{0, 30}));
    EXPECT_FALSE(Validator::isValidName(u"", CharacterLimits{2, 30}));
    EXPECT_FALSE(Validator::isValidName(u"A", CharacterLimits{2, 3}));
    EXPECT_TRUE(Validator::isValidName(u"An", CharacterLimits{2, 3}));
    EXPECT_TRUE(Validator::isValidName(u"Ann", CharacterLimits{2, 3}));
    EXPECT_FALSE(Validator::isValidName(u"Anna", CharacterLimits{2, 3}));
    EXPECT_FALSE(Validator::isValidName(u"a", CharacterLimits{0, 0}));
    std::u16string longest;
    longest.resize(16'777'215, u'a');
    EXPECT_TRUE(Validator::isValidName(longest, CharacterLimits{16'777'215, 16'777'215}));
}

TEST(InputValidator, TextsAndPostalCodesAreOneRule) {
    for (const std::u16string_view text : {u"", u"B-1000", u"1000 AB", u"1000_AB", u"12345678901"}) {
        EXPECT_EQ(Validator::isValidText(text, {2, 10}), Validator::isValidPostalCode(text, {2, 10}));
        EXPECT_EQ(Validator::explainText(text, {2, 10}), Validator::explainPostalCode(text, {2, 10}));
    }
    EXPECT_TRUE(Validator::isValidText(u"B-1000", {2, 10}));
    EXPECT_FALSE(Validator::isValidText(u"1000_AB", {2, 10}));
}

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
constexpr CharacterLimits kImpossibleLimits[] = {
    {3, 2}, {-1, 2}, {-2, -1}, {0, -1}, {0, 16'777'216}, {16'777'216, 16'777'216}, {kLowest, kHighest}, {kHighest, 0}};

template <typename Rule>
void expectInvalidArgument(std::u16string_view operation, Rule rule) {
    for (const CharacterLimits limits : kImpossibleLimits) {
        try {
            rule(limits);
            ADD_FAILURE() << "no exception for " << limits.minChar << " to " << limits.maxChar;
        } catch (const ZORPlatform::NSException& exception) {
            EXPECT_EQ(exception.name(), u"NSInvalidArgumentException");
            EXPECT_TRUE(exception.reason().starts_with(operation));
        }
    }
}

TEST(InputValidator, ImpossibleLimitsRaiseTheInvalidArgumentException) {
    expectInvalidArgument(u"isValidName(_:with:)",
                          [](CharacterLimits with) { (void)Validator::isValidName(u"a", with); });
    expectInvalidArgument(u"isValidName(_:with:)",
                          [](CharacterLimits with) { (void)Validator::explainName(u"$", with); });
    expectInvalidArgument(u"isValidText(_:with:)",
                          [](CharacterLimits with) { (void)Validator::isValidText(u"$", with); });
    expectInvalidArgument(u"isValidText(_:with:)",
                          [](CharacterLimits with) { (void)Validator::explainText(u"a", with); });
    expectInvalidArgument(u"isValidPostalCode(_:with:)",
                          [](CharacterLimits with) { (void)Validator::isValidPostalCode(u"a", with); });
    expectInvalidArgument(u"isValidPostalCode(_:with:)",
                          [](CharacterLimits with) { (void)Validator::explainPostalCode(u"a", with); });
}

TEST(InputValidator, AnEmptyTextIsAnsweredBeforeItsLimits) {
    for (const CharacterLimits limits : kImpossibleLimits) {
        EXPECT_EQ(Validator::isValidName(u"", limits), limits.minChar == 0);
        EXPECT_EQ(Validator::explainText(u"", limits).isValid(), limits.minChar == 0);
    }
}

TEST(InputValidator, BelgianPostalCodesAreFourDigits) {
    EXPECT_TRUE(Validator::isValidBelgiumPostalCode(u"1000"));
    for (const std::u16string_view text : {u"", u"100", u"10000", u"100a", u" 1000", u"1000\n", u"\u0661000"}) {
        EXPECT_FALSE(Validator::isValidBelgiumPostalCode(text));
    }
}

TEST(InputValidator, BusinessNamesTakeTheTypewriterApostropheOnly) {
    EXPECT_TRUE(Validator::isValidBusinessName(u"L'Été (n.v.) {#1}: -!?"));
    for (const std::u16string_view text : {u"", u"L’Été", u"A/B", u"A & B", u"A\n"}) {
        EXPECT_FALSE(Validator::isValidBusinessName(text));
    }
}

TEST(InputValidator, APinCharacterIsOneDigit) {
    EXPECT_TRUE(Validator::isValidPinChar(u"0"));
    for (const std::u16string_view text : {u"", u"10", u"a", u"5\n", u"\uFF15"}) {
        EXPECT_FALSE(Validator::isValidPinChar(text));
    }
}

TEST(InputValidator, RegistrationNumbersAreTypedWithDotsAndADash) {
    // 97 less the remainder of 850730033, and of 2017073003 with the "2" of a birth since 2000.
    EXPECT_TRUE(Validator::isValidNationalRegistrationNumber(u"85.07.30-033.28"));
    EXPECT_TRUE(Validator::isValidNationalRegistrationNumber(u"17.07.30-033.84"));
    for (const std::u16string_view text :
         {u"", u"85073003328", u"85.07.30-033.29", u"85.07.30.033.28", u"85.07.30-033.280", u"85.07.30-033.2",
          u" 5.07.30-033.28", u"\u0668\u0665.07.30-033.28"}) {
        EXPECT_FALSE(Validator::isValidNationalRegistrationNumber(text));
    }
    EXPECT_EQ(Validator::explainNationalRegistrationNumber(u"85.07.30-033.29"),
              broken(BrokenRule::checkDigits, 13, 13));
    EXPECT_EQ(Validator::explainNationalRegistrationNumber(u"85073003328"),
              broken(BrokenRule::unexpectedCharacter, 2, 2));
    EXPECT_EQ(Validator::explainNationalRegistrationNumber(u"85.07.30"),
              (Explanation{BrokenRule::length, 8, 8, 8, 15}));
}

TEST(InputValidator, IdentityCardNumbersAreTypedWithDashes) {
    EXPECT_TRUE(Validator::isValidIDCardNumber(u"000-0000000-00"));
    EXPECT_TRUE(Validator::isValidIDCardNumber(u"000-0000098-01"));
    for (const std::u16string_view text :
         {u"", u"000-0000000-97", u"000000000000", u"000-0000000-000", u"000.0000000.00"}) {
        EXPECT_FALSE(Validator::isValidIDCardNumber(text));
    }
    EXPECT_EQ(Validator::explainIDCardNumber(u"000-0000000-97"), broken(BrokenRule::checkDigits, 12, 12));
    EXPECT_EQ(Validator::explainIDCardNumber(u"000-0000000-000"), (Explanation{BrokenRule::length, 14, 14, 15, 14}));
}

TEST(InputValidator, AnUnexpectedCharacterIsFoundWhereItStands) {
    EXPECT_EQ(Validator::explainStreet(u"Rue $ 1"), broken(BrokenRule::unexpectedCharacter, 4, 4));
    EXPECT_EQ(Validator::explainHouseNumber(u"01"), broken(BrokenRule::unexpectedCharacter, 0, 0));
    EXPECT_EQ(Validator::explainBoxNumber(u"\U0001D7CE\u0663-"), broken(BrokenRule::unexpectedCharacter, 3, 2));
    // The combining mark belongs to the second character.
    EXPECT_EQ(Validator::explainName(u"Re\u0301"), broken(BrokenRule::unexpectedCharacter, 2, 1));
    EXPECT_EQ(Validator::explainName(u""), broken(BrokenRule::empty, 0, 0));
}

TEST(InputValidator, ALengthIsBrokenByTheFirstCharacterTooManyOrAtTheEnd) {
    EXPECT_EQ(Validator::explainStreet(std::u16string(40, u'a')), (Explanation{BrokenRule::tooLong, 35, 35, 40, 35}));
    EXPECT_EQ(Validator::explainHouseNumber(u"1234567"), (Explanation{BrokenRule::tooLong, 5, 5, 7, 5}));
    EXPECT_EQ(Validator::explainBoxNumber(u"\U0001D7CE23456789\U0001D7CE1"),
              (Explanation{BrokenRule::tooLong, 10, 9, 11, 9}));
    EXPECT_EQ(Validator::explainName(u"An", {3, 5}), (Explanation{BrokenRule::tooShort, 2, 2, 2, 3}));
    EXPECT_EQ(Validator::explainName(u"Annabelle", {3, 5}), (Explanation{BrokenRule::tooLong, 5, 5, 9, 5}));
    EXPECT_EQ(Validator::explainName(u"Anna", {3, 3}), (Explanation{BrokenRule::length, 3, 3, 4, 3}));
    EXPECT_EQ(Validator::explainBelgiumPostalCode(u"100"), (Explanation{BrokenRule::length, 3, 3, 3, 4}));
    EXPECT_EQ(Validator::explainPinChar(u"123"), (Explanation{BrokenRule::length, 1, 1, 3, 1}));
}

// What follows the first offence is not judged, but it is counted.
TEST(InputValidator, LengthsFoundAreUserPerceivedCharacters) {
    EXPECT_EQ(Validator::explainHouseNumber(u"12345a\U0001F44D\U0001F3FDe\u0301"),
              (Explanation{BrokenRule::tooLong, 5, 5, 8, 5}));
}

TEST(InputValidator, EmailsExplainWhatIsMissing) {
    EXPECT_EQ(Validator::explainEmail(u"jan"), broken(BrokenRule::incomplete, 3, 3));
    EXPECT_EQ(Validator::explainEmail(u"jan@zor"), broken(BrokenRule::incomplete, 7, 7));
    EXPECT_EQ(Validator::explainEmail(u"j.s@"), broken(BrokenRule::incomplete, 4, 4));
    EXPECT_EQ(Validator::explainEmail(u"@zor.be"), broken(BrokenRule::unexpectedCharacter, 0, 0));
    EXPECT_EQ(Validator::explainEmail(u"jan@.be"), broken(BrokenRule::unexpectedCharacter, 4, 4));
    EXPECT_EQ(Validator::explainEmail(u"jan@a@b.be"), broken(BrokenRule::unexpectedCharacter, 5, 5));
    EXPECT_EQ(Validator::explainEmail(u"jan@zor.b3"), broken(BrokenRule::unexpectedCharacter, 9, 9));
    EXPECT_EQ(Validator::explainEmail(u"jan@zor."), (Explanation{BrokenRule::tooShort, 8, 8, 0, 2}));
    EXPECT_EQ(Validator::explainEmail(u"jan@zor.b"), (Explanation{BrokenRule::tooShort, 9, 9, 1, 2}));
    EXPECT_EQ(Validator::explainEmail(u"jan@zor." + std::u16string(65, u'b')),
              (Explanation{BrokenRule::tooLong, 71, 71, 65, 63}));
}

TEST(InputValidator, PhoneNumbersCountTheirDigits) {
    EXPECT_EQ(Validator::explainMobilePhoneNumber(u"0475/12.34.5"), (Explanation{BrokenRule::tooShort, 12, 12, 9, 10}));
    EXPECT_EQ(Validator::explainMobilePhoneNumber(u"+"), (Explanation{BrokenRule::tooShort, 1, 1, 0, 10}));
    EXPECT_EQ(Validator::explainMobilePhoneNumber(u"0475 1234 5678 9012 34"),
              (Explanation{BrokenRule::tooLong, 18, 18, 18, 15}));
    EXPECT_EQ(Validator::explainMobilePhoneNumber(u"0475--123456"), broken(BrokenRule::unexpectedCharacter, 5, 5));
}

TEST(InputValidator, RulesAllocateNothing) {
    const support::AllocationCount allocations;
    EXPECT_TRUE(Validator::isValidEmail(u"jan.smet@zor.be"));
    EXPECT_TRUE(Validator::isValidMobilePhoneNumber(u"+32 475 12 34 5\u0663"));
    EXPECT_TRUE(Validator::isValidBoxNumber(u"bus \U0001D7CE"));
    EXPECT_TRUE(Validator::isValidHouseNumber(u"12A"));
    EXPECT_TRUE(Validator::isValidStreet(u"Rue de l’Été"));
    EXPECT_TRUE(Validator::isValidName(u"Zoë", {2, 30}));
    EXPECT_TRUE(Validator::isValidText(u"Zoë 1", {2, 30}));
    EXPECT_TRUE(Validator::isValidBusinessName(u"L'Été"));
    EXPECT_FALSE(Validator::isValidBelgiumPostalCode(u"10000"));
    EXPECT_FALSE(Validator::isValidPinChar(u"\U0001F600"));
    EXPECT_TRUE(Validator::isValidNationalRegistrationNumber(u"85.07.30-033.28"));
    EXPECT_TRUE(Validator::isValidIDCardNumber(u"000-0000098-01"));
    EXPECT_EQ(allocations.count(), 0U);
}

}  // namespace
}  // namespace ZORFoundation
