// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Text.h>

#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <string>

namespace ZORPlatform {
namespace {

icu::UnicodeString toIcu(const std::u16string& text) { return {text.data(), static_cast<std::int32_t>(text.size())}; }

std::u16string toUtf16(const icu::UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

TEST(Text, TheUpperCaseOfAUnitIsThatOfATextOfThisUnit) {
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const std::u16string text(1, static_cast<char16_t>(unit));
        ASSERT_EQ(uppercased(text[0]).view(), uppercased(text)) << std::hex << unit;
    }
}

TEST(Text, CaseIsMappedAsIcuMapsItForEveryScalar) {
    for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
        // Letters on both sides, for the mappings that depend on their neighbours.
        std::u16string text = u"aZ";
        appendScalar(text, scalar);
        text += u"zA";
        ASSERT_EQ(uppercased(text), toUtf16(toIcu(text).toUpper(icu::Locale::getRoot())))
            << std::hex << static_cast<unsigned>(scalar);
        ASSERT_EQ(lowercased(text), toUtf16(toIcu(text).toLower(icu::Locale::getRoot())))
            << std::hex << static_cast<unsigned>(scalar);
    }
}

TEST(Text, CaseMappingIsFullUnicodeWithoutALocale) {
    EXPECT_EQ(uppercased(u""), u"");
    EXPECT_EQ(uppercased(u"stra\u00DFe \u0149 i\u0131"), u"STRASSE \u02BCN II");
    EXPECT_EQ(lowercased(u"\u0130 \u03A3\u0391\u03A3"), u"i\u0307 \u03C3\u03B1\u03C2");
}

TEST(Text, CanonicalEqualityIsThatOfIcusNormalFormForEveryScalar) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* decompose = icu::Normalizer2::getNFDInstance(status);
    ASSERT_TRUE(U_SUCCESS(status));
    for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
        std::u16string text = u"x";
        appendScalar(text, scalar);
        const std::u16string decomposed = toUtf16(decompose->normalize(toIcu(text), status));
        ASSERT_TRUE(canonicallyEqual(text, decomposed)) << std::hex << static_cast<unsigned>(scalar);
        // The short cut for plain texts rests on this.
        if (scalar < 0xC0) {
            ASSERT_EQ(text, decomposed) << std::hex << static_cast<unsigned>(scalar);
        }
    }
}

TEST(Text, CanonicallyEqualTextsMayHaveOtherUnits) {
    EXPECT_TRUE(canonicallyEqual(u"\u00E9", u"e\u0301"));
    EXPECT_TRUE(canonicallyEqual(u"a\u0323\u0307", u"a\u0307\u0323"));
    EXPECT_TRUE(canonicallyEqual(u"K", u"\u212A"));
    EXPECT_TRUE(canonicallyEqual(u";", u"\u037E"));
    EXPECT_TRUE(canonicallyEqual(u"", u""));
    EXPECT_FALSE(canonicallyEqual(u"e", u"\u00E9"));
    EXPECT_FALSE(canonicallyEqual(u"\uFB01", u"fi"));
    EXPECT_FALSE(canonicallyEqual(u"a", u"ab"));
    EXPECT_FALSE(canonicallyEqual(std::u16string(1, char16_t{0xD800}), std::u16string(1, char16_t{0xD801})));
}

TEST(Text, ScalarsAreTakenApartAsTheyArePutTogether) {
    for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
        std::u16string text;
        appendScalar(text, scalar);
        const ScalarStep step = scalarAt(text, 0);
        ASSERT_EQ(step.scalar, scalar);
        ASSERT_EQ(step.end, text.size());
        ASSERT_EQ(text.size(), scalar < 0x10000 ? 1U : 2U);
    }
}

TEST(Text, ALoneSurrogateIsAScalarOfItsOwn) {
    const std::u16string text{char16_t{0xDC00}, char16_t{0xD83D}, u'x', char16_t{0xD83D}};
    EXPECT_EQ(scalarAt(text, 0).scalar, 0xDC00U);
    EXPECT_EQ(scalarAt(text, 1).scalar, 0xD83DU);
    EXPECT_EQ(scalarAt(text, 1).end, 2U);
    EXPECT_EQ(scalarAt(text, 3).end, 4U);
}

std::u16string membersOf(bool (*contains)(char16_t)) {
    std::u16string members;
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        if (contains(static_cast<char16_t>(unit))) members.push_back(static_cast<char16_t>(unit));
    }
    return members;
}

TEST(Text, WhiteSpaceAndLineEndsAreThePlatformsSets) {
    EXPECT_EQ(
        membersOf([](char16_t unit) { return isWhitespace(unit); }),
        u"\t \u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200A\u200B\u202F\u205F\u3000");
    EXPECT_EQ(membersOf([](char16_t unit) { return isNewline(unit); }), u"\n\v\f\r\u0085\u2028\u2029");
}

TEST(Text, TrimmingTakesBothSetsOffBothEndsOnly) {
    EXPECT_EQ(trimmed(u"\u200B\r\n a b\u00A0\u2029"), u"a b");
    EXPECT_EQ(trimmed(u" \n"), u"");
    EXPECT_EQ(trimmed(u""), u"");
    EXPECT_EQ(trimmed(u"\uFEFFa"), u"\uFEFFa");
}

TEST(Text, LettersIncludeMarksAndLeaveOutNumbers) {
    for (const char32_t letter : {U'a', U'\u00E9', U'\u0301', U'\u0903', U'\u6F22', U'\U0001D400'})
        EXPECT_TRUE(isLetter(letter));
    for (const char32_t other : {U'1', U' ', U'_', U'\u2160', U'\u20AC', U'\U0001F600', char32_t{0xD800}}) {
        EXPECT_FALSE(isLetter(other));
    }
}

TEST(Text, CanonicalFormsAreTheSameForEquivalentSpellings) {
    EXPECT_EQ(canonicalDecomposition(u"a1"), u"a1");
    EXPECT_EQ(canonicalDecomposition(u"\u00E9"), u"e\u0301");
    EXPECT_EQ(canonicalDecomposition(u"q\u0307\u0323"), u"q\u0323\u0307");
    EXPECT_EQ(canonicalDecomposition(u"\uFB01\xD83D"), u"\uFB01\xD83D");
    EXPECT_EQ(canonicalCaseFolding(u"Ab[1"), u"ab[1");
    EXPECT_EQ(canonicalCaseFolding(u"\u00DF\uFB01\u0130"), u"ssfii\u0307");
    EXPECT_EQ(canonicalCaseFolding(u"\u00C9"), canonicalCaseFolding(u"e\u0301"));
    EXPECT_EQ(canonicalCaseFolding(u"\u0131"), u"\u0131");
    // U+0345 becomes a letter, behind marks that it stood before.
    EXPECT_EQ(canonicalCaseFolding(u"\u03B1\u0345\u0301"), canonicalCaseFolding(u"\u03B1\u0301\u0345"));
}

TEST(Text, EveryUnitFoldsAsIcuFoldsIt) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* decompose = icu::Normalizer2::getNFDInstance(status);
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const std::u16string text(1, static_cast<char16_t>(unit));
        ASSERT_EQ(canonicalCaseFolding(text),
                  toUtf16(decompose->normalize(decompose->normalize(toIcu(text), status).foldCase(), status)))
            << std::hex << unit;
    }
}

}  // namespace
}  // namespace ZORPlatform
