// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Text.h>

#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>
#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace ZORPlatform {
namespace {

// ICU's own segmentation of a whole text, without our short cuts.
class Segmentation {
public:
    Segmentation() {
        UErrorCode status = U_ZERO_ERROR;
        breaks_.reset(icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    }
    std::size_t firstEnd(std::u16string_view text) {
        setText(text);
        return static_cast<std::size_t>(breaks_->following(0));
    }
    std::vector<std::size_t> ends(std::u16string_view text) {
        setText(text);
        std::vector<std::size_t> ends;
        for (breaks_->first(); breaks_->next() != icu::BreakIterator::DONE;) {
            ends.push_back(static_cast<std::size_t>(breaks_->current()));
        }
        return ends;
    }
    std::size_t wholeCharacters(std::u16string_view text, std::size_t position) {
        setText(text);
        std::size_t count = 0;
        for (std::int32_t end = breaks_->following(0);
             end != icu::BreakIterator::DONE && static_cast<std::size_t>(end) <= position; end = breaks_->next()) {
            ++count;
        }
        return count;
    }

private:
    // The iterator looks at the text where it is, so the text stays.
    void setText(std::u16string_view text) {
        text_ = icu::UnicodeString(text.data(), static_cast<std::int32_t>(text.size()));
        breaks_->setText(text_);
    }

    icu::UnicodeString text_;
    std::unique_ptr<icu::BreakIterator> breaks_;
};

// As above, by our own steps.
std::vector<std::size_t> ends(std::u16string_view text) {
    std::vector<std::size_t> ends;
    for (std::size_t at = 0; at < text.size();) ends.push_back(at = characterEnd(text, at));
    return ends;
}

icu::UnicodeString toIcu(const std::u16string& text) { return {text.data(), static_cast<std::int32_t>(text.size())}; }

std::u16string toUtf16(const icu::UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

TEST(Text, ACharacterEndsWhereIcuEndsItForEveryScalarBehindAPlainUnit) {
    Segmentation segmentation;
    for (const char16_t first : {u'5', u' ', u'\u00A0', u'\n', u'\u00AD', u'\u00A9'}) {
        for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
            std::u16string text(1, first);
            appendScalar(text, scalar);
            ASSERT_EQ(characterEnd(text, 0), segmentation.firstEnd(text)) << static_cast<unsigned>(scalar);
        }
    }
}

TEST(Text, CharacterIndexCountsTheWholeCharactersBeforeAPosition) {
    Segmentation segmentation;
    for (const std::u16string_view text :
         {u"", u"abc", u"ab\r\nc\r\r\n", u"e\u0301e\u0301\u0302x", u"12\u0301\u00A034", u"\U0001F1E7\U0001F1EA1",
          u"a\U0001F469\u200D\U0001F469b", u"\u0301\u0301", u"\xD83D\xD83D\xDE00", u"\u1100\u1161\u11A8z"}) {
        for (std::size_t position = 0; position <= text.size(); ++position) {
            EXPECT_EQ(characterIndex(text, position), segmentation.wholeCharacters(text, position)) << position;
        }
    }
}

TEST(Text, TheUpperCaseOfAUnitIsThatOfATextOfThisUnit) {
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const std::u16string text(1, static_cast<char16_t>(unit));
        ASSERT_EQ(uppercased(text[0]).view(), uppercased(text)) << std::hex << unit;
    }
}

// Every pair is looked at in one long text of pairs, each behind a line feed: a line feed never joins what follows.
TEST(Text, CharactersOfPlainUnitsEndWhereIcuEndsThem) {
    constexpr char16_t kPlainUnits = 0x300;
    Segmentation segmentation;
    for (char16_t first = 0; first < kPlainUnits; ++first) {
        std::u16string text;
        for (char16_t second = 0; second < kPlainUnits; ++second) text += {u'\n', first, second};
        ASSERT_EQ(ends(text), segmentation.ends(text)) << static_cast<unsigned>(first);
    }
}

TEST(Text, CharactersOfAnyTextEndWhereIcuEndsThem) {
    // What joins and what separates: line ends, marks, prepended and spacing signs, Hangul, flags, emoji, surrogates.
    constexpr std::array<char32_t, 28> kScalars{u'a',   u' ',   u'\r',  u'\n',   0xA0,    0xAD,    0xE9,
                                                0x301,  0x302,  0x600,  0x903,   0x915,   0x93F,   0x94D,
                                                0x1100, 0x1161, 0x11A8, 0xAC00,  0x200B,  0x200D,  0x20AC,
                                                0xFE0F, 0xD83D, 0xDE00, 0x1F1E7, 0x1F3FD, 0x1F469, 0x1F600};
    Segmentation segmentation;
    std::mt19937 random(29);
    for (int round = 0; round < 20000; ++round) {
        std::u16string text;
        for (std::size_t length = random() % 12; length > 0; --length) {
            appendScalar(text, kScalars[random() % kScalars.size()]);
        }
        const std::vector<std::size_t> expected = segmentation.ends(text);
        ASSERT_EQ(ends(text), expected) << utf8(text);
        ASSERT_EQ(characterCount(text), expected.size());
        for (std::size_t index = 0; index < expected.size(); ++index) {
            ASSERT_EQ(characterPosition(text, index + 1), expected[index]);
        }
    }
}

TEST(Text, CharacterPositionsBeginAtZeroAndEndWithTheText) {
    EXPECT_EQ(characterPosition(u"", 0), 0U);
    EXPECT_EQ(characterPosition(u"", 1), std::nullopt);
    EXPECT_EQ(characterPosition(u"a\r\nb", 2), 3U);
    EXPECT_EQ(characterPosition(u"a\r\nb", 3), 4U);
    EXPECT_EQ(characterPosition(u"a\r\nb", 4), std::nullopt);
    EXPECT_EQ(characterPosition(u"ab", static_cast<std::size_t>(-1)), std::nullopt);
}

TEST(Text, ManyCharactersAreCountedAndOneLongCharacterToo) {
    EXPECT_EQ(characterCount(std::u16string(1'000'000, u'x')), 1'000'000U);
    EXPECT_EQ(characterCount(u'e' + std::u16string(1'000'000, u'\u0301')), 1U);
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
