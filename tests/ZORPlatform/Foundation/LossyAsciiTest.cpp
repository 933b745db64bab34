// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/LossyAscii.h>

#include <ZORPlatform/Foundation/Text.h>

#include <gtest/gtest.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

namespace ZORPlatform {
namespace {

std::u16string ofUnit(unsigned unit) { return lossyAscii(std::u16string(1, static_cast<char16_t>(unit))); }

TEST(LossyAscii, AsciiStaysAsItIs) {
    for (unsigned unit = 0; unit < 0x80; ++unit) {
        ASSERT_EQ(ofUnit(unit), std::u16string(1, static_cast<char16_t>(unit)));
    }
}

TEST(LossyAscii, UpperControlsLoseTheirHighestBit) {
    for (unsigned unit = 0x80; unit < 0xA0; ++unit) {
        ASSERT_EQ(ofUnit(unit), std::u16string(1, static_cast<char16_t>(unit - 0x80)));
    }
}

TEST(LossyAscii, TheSignsOfLatin1HaveTextsOfTheirOwn) {
    EXPECT_EQ(lossyAscii(u"\u00A0\u00A1\u00A2\u00A3\u00A4\u00A5\u00A6"), u" !cL$Y|");
    EXPECT_EQ(lossyAscii(u"\u00A7\u00A8\u00AC\u00AF\u00B0\u00B4\u00B5\u00B6\u00B7\u00B8"), u"");
    EXPECT_EQ(lossyAscii(u"\u00A9\u00AE"), u"(C)(R)");
    EXPECT_EQ(lossyAscii(u"\u00AA\u00BA"), u"ao");
    EXPECT_EQ(lossyAscii(u"\u00AB\u00BB"), u"<<>>");
    EXPECT_EQ(lossyAscii(u"\u00AD\u00B1\u00B2\u00B3\u00B9"), u"-+-231");
    EXPECT_EQ(lossyAscii(u"\u00BC\u00BD\u00BE\u00BF"), u"1/41/23/4?");
    EXPECT_EQ(lossyAscii(u"\u00C0\u00C1\u00C2\u00C3\u00C4\u00C5\u00E0\u00E1\u00E2\u00E3\u00E4\u00E5"), u"AAAAAAaaaaaa");
    EXPECT_EQ(lossyAscii(u"\u00C6\u00E6"), u"AEae");
    EXPECT_EQ(lossyAscii(u"\u00C7\u00E7\u00C8\u00C9\u00CA\u00CB\u00E8\u00E9\u00EA\u00EB"), u"CcEEEEeeee");
    EXPECT_EQ(lossyAscii(u"\u00CC\u00CD\u00CE\u00CF\u00EC\u00ED\u00EE\u00EF\u00D1\u00F1"), u"IIIIiiiiNn");
    EXPECT_EQ(lossyAscii(u"\u00D2\u00D3\u00D4\u00D5\u00D6\u00D8\u00F2\u00F3\u00F4\u00F5\u00F6\u00F8"), u"OOOOOOoooooo");
    EXPECT_EQ(lossyAscii(u"\u00D7\u00F7"), u"X/");
    EXPECT_EQ(lossyAscii(u"\u00D9\u00DA\u00DB\u00DC\u00F9\u00FA\u00FB\u00FC\u00DD\u00FD\u00FF"), u"UUUUuuuuYyy");
}

// Both cases of either letter give one and the same, and there is one sharp s only: deliberate.
TEST(LossyAscii, EthsAreCapitalThornsAreSmallAndSharpSIsOne) {
    EXPECT_EQ(lossyAscii(u"\u00D0\u00F0"), u"THTH");
    EXPECT_EQ(lossyAscii(u"\u00DE\u00FE"), u"thth");
    EXPECT_EQ(lossyAscii(u"\u00DF"), u"s");
}

TEST(LossyAscii, WhiteSpaceIsASpaceAndALineEndALineFeed) {
    for (unsigned unit = 0x100; unit < 0x10000; ++unit) {
        const auto space = static_cast<char16_t>(unit);
        if (isWhitespace(space) || isNewline(space)) {
            ASSERT_EQ(ofUnit(unit), isNewline(space) ? u"\n" : u" ") << std::hex << unit;
        }
    }
    EXPECT_EQ(lossyAscii(u"\u2028\u2029"), u"\n\n");
    EXPECT_EQ(lossyAscii(u"\u0085"), u"\u0005");
}

TEST(LossyAscii, AnEllipsisIsThreeDots) { EXPECT_EQ(lossyAscii(u"a\u2026"), u"a..."); }

TEST(LossyAscii, EverythingElseIsTheFirstOfItsDecompositionOrAQuestionMark) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* decompose = icu::Normalizer2::getNFDInstance(status);
    for (unsigned unit = 0x100; unit < 0x10000; ++unit) {
        const auto at = static_cast<char16_t>(unit);
        if ((unit >= 0xD800 && unit < 0xE000) || isWhitespace(at) || isNewline(at) || unit == 0x2026) continue;
        icu::UnicodeString form;
        std::u16string expected = u"?";
        if (decompose->getDecomposition(static_cast<UChar32>(unit), form)) {
            const char16_t first = form.charAt(0);
            if (first < 0x100) expected = ofUnit(first);
        }
        ASSERT_EQ(ofUnit(unit), expected) << std::hex << unit;
    }
}

TEST(LossyAscii, ASurrogatePairIsOneQuestionMarkAndSoIsALoneSurrogate) {
    EXPECT_EQ(lossyAscii(u"a\U0001F600b"), u"a?b");
    EXPECT_EQ(lossyAscii(u"\xD83D"), u"?");
    EXPECT_EQ(lossyAscii(u"\xD83D\xD83D\xDE00\xDE00"), u"???");
}

TEST(LossyAscii, WholeTextsAreConvertedUnitByUnit) {
    EXPECT_EQ(lossyAscii(u"\u00C7a co\u00FBte 5\u20AC"), u"Ca coute 5?");
    EXPECT_EQ(lossyAscii(u"\u00BD kg"), u"1/2 kg");
    EXPECT_EQ(lossyAscii(u"25\u00B0"), u"25");
    EXPECT_EQ(lossyAscii(u"\u0141\u00F3d\u017A"), u"?odz");
    EXPECT_EQ(lossyAscii(u"e\u0301"), u"e?");
}

// Lengths around where the text is taken in pieces, with units that grow and vanish.
TEST(LossyAscii, LongTextsAreTheirPartsOneBehindTheOther) {
    for (const std::u16string_view part : {u"abc\u00BD", u"\u00B0", u"\u00E9", u"\U0001F600\u2026"}) {
        std::u16string text;
        std::u16string expected;
        while (text.size() < 3000) {
            text += part;
            expected += lossyAscii(part);
            ASSERT_EQ(lossyAscii(text), expected);
        }
    }
}

}  // namespace
}  // namespace ZORPlatform
