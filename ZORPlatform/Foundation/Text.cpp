// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Text.h>

#include <ZORPlatform/Foundation/FourUnitsInternal.h>

#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>

namespace ZORPlatform {
namespace {

// Decimal digits come in runs of ten; these are the zeros. Kept here so that a rule about digits needs no ICU.
constexpr std::array<char32_t, 68> kDecimalZeros = {
    0x0030,  0x0660,  0x06F0,  0x07C0,  0x0966,  0x09E6,  0x0A66,  0x0AE6,  0x0B66,  0x0BE6,  0x0C66,  0x0CE6,
    0x0D66,  0x0DE6,  0x0E50,  0x0ED0,  0x0F20,  0x1040,  0x1090,  0x17E0,  0x1810,  0x1946,  0x19D0,  0x1A80,
    0x1A90,  0x1B50,  0x1BB0,  0x1C40,  0x1C50,  0xA620,  0xA8D0,  0xA900,  0xA9D0,  0xA9F0,  0xAA50,  0xABF0,
    0xFF10,  0x104A0, 0x10D30, 0x11066, 0x110F0, 0x11136, 0x111D0, 0x112F0, 0x11450, 0x114D0, 0x11650, 0x116C0,
    0x11730, 0x118E0, 0x11950, 0x11C50, 0x11D50, 0x11DA0, 0x11F50, 0x16A60, 0x16AC0, 0x16B50, 0x1D7CE, 0x1D7D8,
    0x1D7E2, 0x1D7EC, 0x1D7F6, 0x1E140, 0x1E2F0, 0x1E4F0, 0x1E950, 0x1FBF0};

// Below these units only ASCII letters have another case.
constexpr char16_t kFirstWithUpperCase = u'\u00B5';
constexpr char16_t kFirstWithLowerCase = u'\u00C0';

bool allBelow(std::u16string_view text, char16_t limit) noexcept {
    return std::all_of(text.begin(), text.end(), [limit](char16_t unit) { return unit < limit; });
}

std::u16string toString(const icu::UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

icu::UnicodeString readOnlyAlias(std::u16string_view text) {
    return {false, text.data(), static_cast<std::int32_t>(text.size())};
}

icu::UnicodeString decomposed(const icu::UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString form = icu::Normalizer2::getNFDInstance(status)->normalize(text, status);
    // ICU refuses a text of more than two thousand million units, and nothing else.
    if (U_FAILURE(status)) throw std::bad_alloc();
    return form;
}

}  // namespace

bool canonicallyEqualByForms(std::u16string_view left, std::u16string_view right) {
    if (left == right) return true;
    if (allBelow(left, kFirstDecomposable) && allBelow(right, kFirstDecomposable)) return false;
    return decomposed(readOnlyAlias(left)) == decomposed(readOnlyAlias(right));
}

std::u16string canonicalDecomposition(std::u16string_view text) {
    if (allBelow(text, kFirstDecomposable)) return std::u16string(text);
    return toString(decomposed(readOnlyAlias(text)));
}

std::u16string canonicalCaseFolding(std::u16string_view text) {
    if (allBelow(text, kFirstWithUpperCase)) return lowercased(text);
    // Folding takes U+0345 for a letter, so the marks stand in their order before; and it may put them out of it.
    return toString(decomposed(decomposed(readOnlyAlias(text)).foldCase()));
}

void appendScalar(std::u16string& text, char32_t scalar) {
    if (scalar < 0x10000) {
        text.push_back(static_cast<char16_t>(scalar));
    } else {
        text.push_back(static_cast<char16_t>(0xD7C0 + (scalar >> 10)));
        text.push_back(static_cast<char16_t>(0xDC00 + (scalar & 0x3FF)));
    }
}

void uppercase(std::u16string& text) {
    std::size_t at = 0;
    for (; at + 4 <= text.size(); at += 4) {
        const std::uint64_t word = fourUnits(&text[at]);
        if (lanesFrom(word, kFirstWithUpperCase) != 0) break;
        storeFourUnits(withAsciiCapitals(word), &text[at]);
    }
    for (; at < text.size() && text[at] < kFirstWithUpperCase; ++at) {
        if (text[at] >= u'a' && text[at] <= u'z') text[at] = static_cast<char16_t>(text[at] - 0x20);
    }
    // Capitals stay as they are, so what is done already does not matter.
    if (at < text.size()) text = toString(icu::UnicodeString(readOnlyAlias(text)).toUpper(icu::Locale::getRoot()));
}

std::u16string uppercased(std::u16string_view text) {
    std::u16string result(text);
    uppercase(result);
    return result;
}

UppercasedUnit uppercased(char16_t unit) noexcept {
    UppercasedUnit result;
    UErrorCode status = U_ZERO_ERROR;
    result.count = static_cast<std::size_t>(
        u_strToUpper(result.units.data(), static_cast<std::int32_t>(result.units.size()), &unit, 1, "", &status));
    return result;
}

std::u16string lowercased(std::u16string_view text) {
    if (allBelow(text, kFirstWithLowerCase)) {
        std::u16string result(text);
        for (char16_t& unit : result) {
            if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + 0x20);
        }
        return result;
    }
    return toString(icu::UnicodeString(readOnlyAlias(text)).toLower(icu::Locale::getRoot()));
}

bool isLetter(char32_t scalar) noexcept {
    return (U_GET_GC_MASK(static_cast<UChar32>(scalar)) & (U_GC_L_MASK | U_GC_M_MASK)) != 0;
}

bool isDecimalDigit(char32_t scalar) noexcept {
    if (scalar < 0x80) return scalar >= u'0' && scalar <= u'9';
    const auto* const above = std::upper_bound(kDecimalZeros.begin(), kDecimalZeros.end(), scalar);
    return above != kDecimalZeros.begin() && scalar - *(above - 1) < 10;
}

}  // namespace ZORPlatform
