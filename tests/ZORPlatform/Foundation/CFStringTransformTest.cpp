// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/CFStringTransform.h>

#include <gtest/gtest.h>
#include <unicode/translit.h>
#include <unicode/unistr.h>

#include <memory>
#include <random>

namespace ZORPlatform {
namespace {

TEST(CFStringTransform, FourDigitsOfEitherCaseAreAUnit) {
    EXPECT_EQ(textFromHexJava(u"\\u00E9t\\u00e9"), u"\u00E9t\u00E9");
    EXPECT_EQ(textFromHexJava(u"\\u00411"), u"A1");
    EXPECT_EQ(textFromHexJava(u"\\uFFFF"), u"\uFFFF");
    EXPECT_EQ(textFromHexJava(u"\\u0000"), std::u16string(1, u'\0'));
}

TEST(CFStringTransform, TwoEscapesMakeAPairAndOneStaysALoneSurrogate) {
    EXPECT_EQ(textFromHexJava(u"\\uD83D\\uDE00"), u"\U0001F600");
    EXPECT_EQ(textFromHexJava(u"\\uD83D!"), u"\xD83D!");
}

TEST(CFStringTransform, OtherEscapesStay) {
    for (const std::u16string_view text : {u"\\U00E9", u"\\x41", u"\\u{41}", u"\\u+0041", u"\\uuuu0041", u"\\u00E",
                                           u"\\u00G0", u"\\u", u"\\", u"\\n", u"\\U0001F600", u"\\u 041"}) {
        EXPECT_EQ(textFromHexJava(text), text);
    }
}

TEST(CFStringTransform, ABackslashDoesNotProtectAnEscapeAndResultsAreNotReadAgain) {
    EXPECT_EQ(textFromHexJava(u"\\\\u0041"), u"\\A");
    EXPECT_EQ(textFromHexJava(u"\\u005Cu0041"), u"\\u0041");
    EXPECT_EQ(textFromHexJava(u"\\u\\u0041"), u"\\uA");
}

TEST(CFStringTransform, GivesWhatIcuGives) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Transliterator> peer(
        icu::Transliterator::createInstance("Any-Hex/Java", UTRANS_REVERSE, status));
    ASSERT_TRUE(U_SUCCESS(status));
    constexpr std::u16string_view kUnits = u"\\\\\\uuuU0D8dcCFf3+{}x\u00E9";
    std::mt19937 random(37);
    for (int round = 0; round < 50000; ++round) {
        std::u16string text;
        for (std::size_t parts = random() % 6; parts > 0; --parts) {
            if (random() % 2 == 0) text += u"\\u";
            for (std::size_t units = random() % 6; units > 0; --units) text += kUnits[random() % kUnits.size()];
        }
        icu::UnicodeString expected(text.data(), static_cast<std::int32_t>(text.size()));
        peer->transliterate(expected);
        ASSERT_EQ(textFromHexJava(text),
                  std::u16string_view(expected.getBuffer(), static_cast<std::size_t>(expected.length())))
            << ::testing::PrintToString(text);
    }
}

}  // namespace
}  // namespace ZORPlatform
