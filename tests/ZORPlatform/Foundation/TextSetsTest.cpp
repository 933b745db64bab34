// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Text.h>

#include <gtest/gtest.h>
#include <unicode/regex.h>
#include <unicode/uchar.h>

#include <memory>

namespace ZORPlatform {
namespace {

// Newer releases of ICU know more characters than the release that the sets are pinned to.
bool isOfUnicode15(UChar32 scalar) {
    UVersionInfo age;
    u_charAge(scalar, age);
    return age[0] <= 15 && !(age[0] == 15 && age[1] > 0);
}

template <typename Predicate>
void expectSameAsPattern(const char16_t* pattern, Predicate contains) {
    UErrorCode status = U_ZERO_ERROR;
    icu::RegexMatcher matcher(icu::UnicodeString(pattern), 0, status);
    ASSERT_TRUE(U_SUCCESS(status));
    for (UChar32 scalar = 0; scalar < 0x110000; ++scalar) {
        if (!isOfUnicode15(scalar)) continue;
        const icu::UnicodeString text(scalar);
        ASSERT_EQ(contains(static_cast<char32_t>(scalar)), matcher.reset(text).matches(status) != 0)
            << std::hex << scalar;
    }
}

TEST(TextSets, DecimalDigitsAreThoseOfARegularExpression) {
    expectSameAsPattern(u"\\d", [](char32_t scalar) { return isDecimalDigit(scalar); });
}

TEST(TextSets, UnicodeWhiteSpaceIsThatOfARegularExpression) {
    expectSameAsPattern(
        u"\\s", [](char32_t scalar) { return scalar < 0x10000 && isUnicodeWhiteSpace(static_cast<char16_t>(scalar)); });
}

}  // namespace
}  // namespace ZORPlatform
