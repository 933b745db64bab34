// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORAccountNumberFormatter.h>

#include <ZORFoundation/ZORAccountNumberValidator.h>
#include <ZORPlatform/Foundation/Text.h>

#include <gtest/gtest.h>
#include <support/AllocationCount.h>
#include <support/ExactText.h>
#include <support/IdentifierModel.h>

#include <optional>
#include <random>
#include <string>

namespace ZORFoundation {
namespace {

using Formatter = ZORAccountNumberFormatter;

// The IBAN display step for step: padded to 32, cut in nine pieces, joined, trimmed, upper-cased.
std::u16string literalIbanDisplay(std::u16string_view text) {
    std::u16string padded = Formatter::strippedAccountNumber(text);
    padded.resize(32, u' ');
    std::u16string joined = padded.substr(0, 2) + padded.substr(2, 2);
    for (std::size_t at = 4; at < 32; at += 4) joined += u'\u00A0' + padded.substr(at, 4);
    return ZORPlatform::uppercased(ZORPlatform::trimmed(joined));
}

TEST(ZORAccountNumberFormatter, StripsSpacesHyphensAndNoBreakSpacesOnly) {
    EXPECT_EQ(Formatter::strippedAccountNumber(u"be68 5390-0754\u00A07034"), u"be68539007547034");
    EXPECT_EQ(Formatter::strippedAccountNumber(u" -\u00A0"), u"");
    EXPECT_EQ(Formatter::strippedAccountNumber(u""), u"");
    EXPECT_EQ(Formatter::strippedAccountNumber(u"1\t2\u20113\u2009"), u"1\t2\u20113\u2009");
    EXPECT_EQ(Formatter::strippedAccountNumber(u"\xD83D -\xDE00"), u"\xD83D\xDE00");
}

TEST(ZORAccountNumberFormatter, ShowsAnIbanInCapitalsAndGroupsOfFour) {
    EXPECT_EQ(Formatter::formattedAccountNumberAsIban(u"be68 5390-0754 7034"), u"BE68\u00A05390\u00A00754\u00A07034");
    EXPECT_EQ(Formatter::formattedAccountNumberAsIban(u"be685"), u"BE68\u00A05");
    EXPECT_EQ(Formatter::formattedAccountNumberAsIban(u"BE68"), u"BE68");
    EXPECT_EQ(Formatter::formattedAccountNumberAsIban(u""), u"");
    EXPECT_EQ(Formatter::formattedAccountNumberAsIban(u" - "), u"");
}

TEST(ZORAccountNumberFormatter, KeepsOnlyThirtyTwoUnitsOfAnIban) {
    EXPECT_EQ(Formatter::formattedAccountNumberAsIban(u"MT84MALT011000012345MTLCAST001SXYZ"),
              u"MT84\u00A0MALT\u00A00110\u00A00001\u00A02345\u00A0MTLC\u00A0AST0\u00A001SX");
}

TEST(ZORAccountNumberFormatter, TrimsAnIbanAfterItsGroupsStand) {
    EXPECT_EQ(Formatter::formattedAccountNumberAsIban(u"\tbe68539007547034\t"),
              u"BE6\u00A08539\u00A00075\u00A04703\u00A04");
}

TEST(ZORAccountNumberFormatter, UpperCasesAnIbanAsUnicodeDoes) {
    EXPECT_EQ(Formatter::formattedAccountNumberAsIban(u"stra\u00DFe"), u"STRA\u00A0SSE");
}

TEST(ZORAccountNumberFormatter, ShowsAnIbanAsThePaddedPiecesWouldTrimmedAndUpperCased) {
    static constexpr std::u16string_view kUnits =
        u"0123456789abcXYZ \t\n\u2003-\u00A0\u00DF\u0131\U00010428\u0345\u200B";
    std::mt19937 random(5);
    for (int round = 0; round < 20'000; ++round) {
        std::u16string text;
        for (std::size_t length = random() % 45; length > 0; --length) text.push_back(kUnits[random() % kUnits.size()]);
        ASSERT_EQ(Formatter::formattedAccountNumberAsIban(text), literalIbanDisplay(text));
    }
}

TEST(ZORAccountNumberFormatter, ShowsAnIbanOfAnyLengthBareAndTypedInGroups) {
    const std::u16string number = u"be68azAZ`{@[09/:4703mt84MALT0110000123";
    for (const std::u16string_view separator : {u"", u" ", u"-", u"\u00A0", u"  "}) {
        for (std::size_t groupUnits = 1; groupUnits <= 6; ++groupUnits) {
            for (std::size_t length = 0; length <= number.size(); ++length) {
                std::u16string typed;
                for (std::size_t at = 0; at < length; ++at) {
                    if (at > 0 && at % groupUnits == 0) typed += separator;
                    typed += number[at];
                }
                const support::ExactText text(typed);
                ASSERT_EQ(Formatter::formattedAccountNumberAsIban(text.view()), literalIbanDisplay(typed));
                ASSERT_EQ(Formatter::strippedAccountNumber(text.view()), number.substr(0, length));
            }
        }
    }
}

TEST(ZORAccountNumberFormatter, ShowsABbanOfAnyLengthAsThePaddedPiecesWouldBeJoined) {
    static constexpr std::u16string_view kUnits = u"0123456789aZ \u00A0-#\u0663";
    std::mt19937 random(12);
    for (int round = 0; round < 20'000; ++round) {
        std::u16string typed;
        for (std::size_t length = random() % 20; length > 0; --length)
            typed.push_back(kUnits[random() % kUnits.size()]);
        std::u16string padded = Formatter::strippedAccountNumber(typed);
        ASSERT_EQ(padded, support::without(typed, u" -\u00A0"));
        const bool isEmpty = padded.empty();
        padded.resize(12, u' ');
        const std::u16string shown = padded.substr(0, 3) + u'-' + padded.substr(3, 7) + u'-' + padded.substr(10);
        ASSERT_EQ(Formatter::formattedAccountNumberAsBban(support::ExactText(typed).view()),
                  isEmpty ? std::u16string() : shown);
    }
}

TEST(ZORAccountNumberFormatter, ShowsABbanInAlwaysFourteenUnits) {
    EXPECT_EQ(Formatter::formattedAccountNumberAsBban(u"539007547034"), u"539-0075470-34");
    EXPECT_EQ(Formatter::formattedAccountNumberAsBban(u"5390075470349"), u"539-0075470-34");
    EXPECT_EQ(Formatter::formattedAccountNumberAsBban(u"12345678"), u"123-45678  -  ");
    EXPECT_EQ(Formatter::formattedAccountNumberAsBban(u"1"), u"1  -       -  ");
    EXPECT_EQ(Formatter::formattedAccountNumberAsBban(u"#"), u"#  -       -  ");
    EXPECT_EQ(Formatter::formattedAccountNumberAsBban(u"abc"), u"abc-       -  ");
}

TEST(ZORAccountNumberFormatter, ShowsNoBbanForATextOfSeparators) {
    EXPECT_EQ(Formatter::formattedAccountNumberAsBban(u""), u"");
    EXPECT_EQ(Formatter::formattedAccountNumberAsBban(u" - \u00A0"), u"");
}

TEST(ZORAccountNumberFormatter, ShowsTheFormThatTheCallerNames) {
    EXPECT_EQ(Formatter::formattedAccountNumber(u"539007547034", /*asIban=*/true), u"5390\u00A00754\u00A07034");
    EXPECT_EQ(Formatter::formattedAccountNumber(u"539007547034", /*asIban=*/false), u"539-0075470-34");
}

TEST(ZORAccountNumberFormatter, ChoosesTheFormInWhichTheNumberIsValid) {
    EXPECT_EQ(Formatter::autoFormattedAccountNumber(u"be68 5390 0754 7034"), u"BE68\u00A05390\u00A00754\u00A07034");
    EXPECT_EQ(Formatter::autoFormattedAccountNumber(u"539-0075470-34"), u"539-0075470-34");
    EXPECT_EQ(Formatter::autoFormattedAccountNumber(u"539-0075470-35"), u"539007547035");
    EXPECT_EQ(Formatter::autoFormattedAccountNumber(u"12 34"), u"1234");
    EXPECT_EQ(Formatter::autoFormattedAccountNumber(u""), u"");
    EXPECT_EQ(Formatter::autoFormattedAccountNumber(std::nullopt), std::nullopt);
}

TEST(ZORAccountNumberFormatter, StripsANumberThatIsTooLongToBeValidAsAWhole) {
    // The first 32 units are a valid number by themselves.
    std::u16string text = u"MT64MALT011000012345MTLCAST00100";
    ASSERT_TRUE(ZORAccountNumberValidator::isValidIban(text));
    EXPECT_EQ(Formatter::autoFormattedAccountNumber(text), Formatter::formattedAccountNumberAsIban(text));
    EXPECT_EQ(Formatter::autoFormattedAccountNumber(text + u" 7"), text + u"7");
    EXPECT_EQ(Formatter::autoFormattedAccountNumber(u"5390075470340 0"), u"53900754703400");
}

TEST(ZORAccountNumberFormatter, GivesBackTheNumberWhenItsDisplayIsStripped) {
    std::mt19937 random(6);
    for (int round = 0; round < 2000; ++round) {
        std::u16string number(1 + random() % 32, u'0');
        for (char16_t& unit : number) {
            unit = static_cast<char16_t>(random() % 3 == 0 ? u'A' + random() % 26 : u'0' + random() % 10);
        }
        const std::u16string shown = Formatter::formattedAccountNumberAsIban(number);
        EXPECT_EQ(Formatter::strippedAccountNumber(shown), number);
        EXPECT_EQ(ZORAccountNumberValidator::isValidIban(Formatter::strippedAccountNumber(shown)),
                  ZORAccountNumberValidator::isValidIban(number));
    }
}

TEST(ZORAccountNumberFormatter, AllocatesOnlyItsResult) {
    const support::AllocationCount allocations;
    const std::u16string iban = Formatter::formattedAccountNumberAsIban(u"be68 5390 0754 7034");
    EXPECT_EQ(allocations.count(), 1U);
    const std::u16string bban = Formatter::formattedAccountNumberAsBban(u"539007547034");
    EXPECT_EQ(allocations.count(), 2U);
    const std::u16string stripped = Formatter::strippedAccountNumber(u"539-0075470-34");
    EXPECT_EQ(allocations.count(), 3U);
    for (const std::u16string_view text : {u"be68 5390 0754 7034", u"539-0075470-34", u"539-0075470-35"}) {
        const support::AllocationCount one;
        const std::optional<std::u16string> shown = Formatter::autoFormattedAccountNumber(text);
        EXPECT_EQ(one.count(), 1U);
    }
}

}  // namespace
}  // namespace ZORFoundation
