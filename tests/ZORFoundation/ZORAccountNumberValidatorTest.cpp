// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORAccountNumberValidator.h>

#include <ZORFoundation/ZORMod97.h>
#include <ZORPlatform/Foundation/Text.h>

#include <gtest/gtest.h>
#include <support/AccountNumberModel.h>
#include <support/AllocationCount.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>

namespace ZORFoundation {
namespace {

using Validator = ZORAccountNumberValidator;

// Asks from a heap buffer of exactly the text's size, and holds the twins to each other and to the model.
void expectAgreement(std::u16string_view text) {
    const auto exact = std::make_unique<char16_t[]>(text.size());
    std::copy(text.begin(), text.end(), exact.get());
    const std::u16string_view view(exact.get(), text.size());
    const auto shown = [&] {
        std::string hex;
        for (const char16_t unit : text) hex += ::testing::PrintToString(static_cast<int>(unit)) + ' ';
        return hex;
    };
    ASSERT_EQ(Validator::isValidIban(view), support::literalIsValidIban(text)) << shown();
    ASSERT_EQ(Validator::isValidBban(view), support::literalIsValidBban(text)) << shown();
    ASSERT_EQ(Validator::isValidIban(view), Validator::explainIban(view).isValid()) << shown();
    ASSERT_EQ(Validator::isValidBban(view), Validator::explainBban(view).isValid()) << shown();
}

char16_t randomUnit(std::mt19937& random) {
    static constexpr std::u16string_view kOdd =
        u" -+\u00A0\t\n\u200B\u3000\u0131\u017F\u00DF\uFB03\u0149\u0390\u212A\u0661\uFF11\xD83D\xDE00\x7F:/@[`{\u0301";
    switch (random() % 8) {
        case 0:
            return static_cast<char16_t>(u'A' + random() % 26);
        case 1:
            return static_cast<char16_t>(u'a' + random() % 26);
        case 2:
            return kOdd[random() % kOdd.size()];
        case 3:
            return random() % 20 == 0 ? static_cast<char16_t>(random()) : u'0';
        default:
            return static_cast<char16_t>(u'0' + random() % 10);
    }
}

// Sets two digits so that the number is valid, where two digits can.
bool setCheckDigits(std::u16string& text, std::size_t at, bool (*isValid)(std::u16string_view)) {
    for (char16_t tens = u'0'; tens <= u'9'; ++tens) {
        for (char16_t ones = u'0'; ones <= u'9'; ++ones) {
            text[at] = tens;
            text[at + 1] = ones;
            if (isValid(text)) return true;
        }
    }
    return false;
}

TEST(ZORAccountNumberValidator, AcceptsIbansOfManyCountriesInCapitalsAndSmallLetters) {
    for (const std::u16string_view text :
         {u"BE68539007547034", u"be68539007547034", u"NL91ABNA0417164300", u"nl91abna0417164300",
          u"GB29NWBK60161331926819", u"DE89370400440532013000", u"QA58DOHB00001234567890ABCDEFG", u"NO9386011117947",
          u"MT84MALT011000012345MTLCAST001S", u"XX631", u"1241345678", u"XX441234567890123456789012345678"}) {
        EXPECT_TRUE(Validator::isValidIban(text));
    }
}

TEST(ZORAccountNumberValidator, RejectsIbansOfFewerThanFiveOrMoreThanThirtyTwoUnits) {
    for (const std::u16string_view text :
         {u"", u"B", u"BE", u"BE6", u"BE68", u"XX6612345678901234567890123456789", u"RU0204452560040702810412345678901",
          u"MT84MALT011000012345MTLCAST001SXYZ"}) {
        EXPECT_FALSE(Validator::isValidIban(text));
    }
}

TEST(ZORAccountNumberValidator, HoldsOnlyACapitalBeToSixteenUnits) {
    EXPECT_FALSE(Validator::isValidIban(u"BE6853900754703"));
    EXPECT_FALSE(Validator::isValidIban(u"BE191234567"));
    EXPECT_TRUE(Validator::isValidIban(u"be191234567"));
    EXPECT_TRUE(Validator::isValidIban(u"bE68539007547034"));
}

TEST(ZORAccountNumberValidator, DoesNotStripAnIban) {
    EXPECT_FALSE(Validator::isValidIban(u"BE68 5390 0754 7034"));
    EXPECT_FALSE(Validator::isValidIban(u"BE69539007547034"));
}

TEST(ZORAccountNumberValidator, CountsDotlessIAndLongSAsTheLettersTheyUpperCaseTo) {
    std::u16string text = u"GI00NWBK000000007099453";
    ASSERT_TRUE(setCheckDigits(text, 2, [](std::u16string_view t) { return Validator::isValidIban(t); }));
    text[1] = u'\u0131';
    EXPECT_TRUE(Validator::isValidIban(text));
    text = u"SA00000000608010167519";
    ASSERT_TRUE(setCheckDigits(text, 2, [](std::u16string_view t) { return Validator::isValidIban(t); }));
    text[0] = u'\u017F';
    EXPECT_TRUE(Validator::isValidIban(text));
}

TEST(ZORAccountNumberValidator, NeverAcceptsANumberWhoseRemainderIsNegative) {
    // Fifth unit first: "-1" is what modulo97: reads.
    EXPECT_EQ(ZORMod97::modulo97(u"-98"), -1);
    expectAgreement(u"0098-");
    expectAgreement(u"9800-");
    for (int seed = 0; seed < 100; ++seed) {
        const std::string digits = std::to_string(1000 + seed * 7);
        expectAgreement(std::u16string(digits.begin(), digits.end()) + u"-12345");
    }
}

TEST(ZORAccountNumberValidator, AgreesWithTheRulesOnRandomTextsOfEveryLength) {
    std::mt19937 random(1);
    for (int round = 0; round < 60'000; ++round) {
        std::u16string text;
        for (std::size_t length = random() % 41; length > 0; --length) text.push_back(randomUnit(random));
        ASSERT_NO_FATAL_FAILURE(expectAgreement(text));
    }
}

TEST(ZORAccountNumberValidator, AgreesWithTheRulesOnValidNumbersWithOddUnits) {
    std::mt19937 random(2);
    int valid = 0;
    for (int round = 0; round < 1500; ++round) {
        std::u16string text(5 + random() % 28, u'0');
        for (char16_t& unit : text) {
            unit = static_cast<char16_t>(random() % 5 == 0 ? u'A' + random() % 26 : u'0' + random() % 10);
        }
        for (std::size_t odd = random() % 3; odd > 0; --odd) text[random() % text.size()] = randomUnit(random);
        valid += setCheckDigits(text, 2, [](std::u16string_view t) { return Validator::isValidIban(t); }) ? 1 : 0;
        ASSERT_NO_FATAL_FAILURE(expectAgreement(text));
        // Near misses of a valid number.
        std::u16string near = text;
        std::swap(near[random() % near.size()], near[random() % near.size()]);
        ASSERT_NO_FATAL_FAILURE(expectAgreement(near));
    }
    EXPECT_GT(valid, 800);
}

TEST(ZORAccountNumberValidator, AgreesWithTheRulesForEveryUnitAtEveryPosition) {
    for (std::u16string text : {u"BE68539007547034", u"be191234567", u"MT84MALT011000012345MTLCAST001S"}) {
        for (std::size_t at = 0; at < text.size(); ++at) {
            std::u16string changed = text;
            for (unsigned unit = 0; unit < 0x10000; unit += at % 8 == 4 ? 1 : 13) {
                changed[at] = static_cast<char16_t>(unit);
                ASSERT_NO_FATAL_FAILURE(expectAgreement(changed));
            }
        }
    }
}

TEST(ZORAccountNumberValidator, AcceptsBbansWhoseCheckIsTheRemainder) {
    for (const std::u16string_view text : {u"539007547034", u"000000009797", u"000000000097", u"924484730113"}) {
        EXPECT_TRUE(Validator::isValidBban(text));
    }
    for (const std::u16string_view text :
         {u"539007547035", u"000000009700", u"000000000000", u"539-07547034", u"53900754703 ", u"53900754703",
          u"5390075470340", u"", u"\u066539007547034"}) {
        EXPECT_FALSE(Validator::isValidBban(text));
    }
}

TEST(ZORAccountNumberValidator, AcceptsABbanWithLeadingSpacesWhereTheNumbersWorkOut) {
    EXPECT_TRUE(Validator::isValidBban(u"  1234567803"));
    // Eight spaces hide the digits behind them from the remainder, which is then 0.
    EXPECT_TRUE(Validator::isValidBban(u"        1297"));
    EXPECT_TRUE(Validator::isValidBban(u"          97"));
    EXPECT_FALSE(Validator::isValidBban(u"           7"));
    for (std::size_t spaces = 0; spaces <= 12; ++spaces) {
        for (int number = 0; number < 100'000; number += 25) {
            std::string digits = std::to_string(10'000'000'000 + number * 97'003LL).substr(0, 12 - spaces);
            digits.insert(0, 12 - digits.size(), ' ');
            ASSERT_NO_FATAL_FAILURE(expectAgreement(std::u16string(digits.begin(), digits.end())));
        }
    }
}

TEST(ZORAccountNumberValidator, AgreesWithTheRulesOnAllCheckDigitsOfABban) {
    std::mt19937_64 random(3);
    for (int round = 0; round < 300; ++round) {
        const std::string body = std::to_string(10'000'000'000 + random() % 10'000'000'000).substr(1);
        for (int check = 100; check < 200; ++check) {
            const std::string digits = body + std::to_string(check).substr(1);
            ASSERT_NO_FATAL_FAILURE(expectAgreement(std::u16string(digits.begin(), digits.end())));
        }
    }
}

TEST(ZORAccountNumberValidator, ExplainsTheFirstRuleThatAnIbanBreaks) {
    const auto explain = [](std::u16string_view text) { return Validator::explainIban(text); };
    EXPECT_EQ(explain(u"BE68539007547034"), Explanation{});
    EXPECT_EQ(explain(u""), (Explanation{BrokenRule::empty, 0, 0, 0, 0}));
    EXPECT_EQ(explain(u"B"), (Explanation{BrokenRule::tooShort, 1, 1, 1, 5}));
    EXPECT_EQ(explain(u"BE68"), (Explanation{BrokenRule::tooShort, 4, 4, 4, 5}));
    EXPECT_EQ(explain(std::u16string(33, u'9')), (Explanation{BrokenRule::tooLong, 32, 32, 33, 32}));
    EXPECT_EQ(explain(u"BE6853900754703"), (Explanation{BrokenRule::countryLength, 15, 15, 15, 16}));
    EXPECT_EQ(explain(u"BE68 5390 0754 7034"), (Explanation{BrokenRule::countryLength, 16, 16, 19, 16}));
    EXPECT_EQ(explain(u"NL91-ABNA 041716430"), (Explanation{BrokenRule::unexpectedCharacter, 4, 4, 0, 0}));
    EXPECT_EQ(explain(u"BE69539007547034"), (Explanation{BrokenRule::checkDigits, 2, 2, 0, 0}));
}

TEST(ZORAccountNumberValidator, DoesNotReportAnOddUnitInAValidIban) {
    std::u16string text = u"XX00123456-";
    ASSERT_TRUE(setCheckDigits(text, 2, [](std::u16string_view t) { return Validator::isValidIban(t); }));
    EXPECT_EQ(Validator::explainIban(text), Explanation{});
}

TEST(ZORAccountNumberValidator, ExplainsTheFirstRuleThatABbanBreaks) {
    const auto explain = [](std::u16string_view text) { return Validator::explainBban(text); };
    EXPECT_EQ(explain(u"539007547034"), Explanation{});
    EXPECT_EQ(explain(u""), (Explanation{BrokenRule::length, 0, 0, 0, 12}));
    EXPECT_EQ(explain(u"539-0075470-34"), (Explanation{BrokenRule::length, 12, 12, 14, 12}));
    EXPECT_EQ(explain(u"539-07547034"), (Explanation{BrokenRule::unexpectedCharacter, 3, 3, 0, 0}));
    EXPECT_EQ(explain(u"  90 7547034"), (Explanation{BrokenRule::unexpectedCharacter, 4, 4, 0, 0}));
    EXPECT_EQ(explain(u"            "), (Explanation{BrokenRule::unexpectedCharacter, 11, 11, 0, 0}));
    EXPECT_EQ(explain(u"539007547035"), (Explanation{BrokenRule::checkDigits, 10, 10, 0, 0}));
}

TEST(ZORAccountNumberValidator, PointsAtTheCharacterThatHoldsTheOffendingUnit) {
    // The acute accent belongs to the digit before it.
    EXPECT_EQ(Validator::explainIban(u"NL91ABNA0\u0301417"),
              (Explanation{BrokenRule::unexpectedCharacter, 9, 8, 0, 0}));
    EXPECT_EQ(Validator::explainIban(std::u16string(33, u'\u0301')), (Explanation{BrokenRule::tooLong, 32, 0, 33, 32}));
}

TEST(ZORAccountNumberValidator, AllocatesNothing) {
    const std::u16string odd = u"NL91ABNA0\u00DF417\u0131643\u017F";
    const std::u16string endless(1'000'000, u'\u0301');
    static_cast<void>(Validator::explainIban(endless));  // Unicode's boundary rules are loaded once a thread.
    const support::AllocationCount allocations;
    for (const std::u16string_view text :
         {std::u16string_view(u"BE68539007547034"), std::u16string_view(u"539007547034"),
          std::u16string_view(u"GB29NWBK60161331926819"), std::u16string_view(odd), std::u16string_view(endless),
          std::u16string_view(u"  1234567803")}) {
        static_cast<void>(Validator::isValidIban(text));
        static_cast<void>(Validator::isValidBban(text));
        static_cast<void>(Validator::explainIban(text));
        static_cast<void>(Validator::explainBban(text));
    }
    EXPECT_EQ(allocations.count(), 0U);
}

}  // namespace
}  // namespace ZORFoundation
