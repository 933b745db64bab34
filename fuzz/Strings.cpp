// SPDX-License-Identifier: Apache-2.0
//
// Laws of the conversions of texts: escapes equal ICU's transform, what is undone comes back, what is done is done
// once, and a search finds what it is made of.
#include <fuzz/support/FuzzText.h>

#include <ZORFoundation/StringExtension.h>
#include <ZORFoundation/ZORExtra.h>
#include <ZORFoundation/ZORSubstringSearch.h>
#include <ZORPlatform/Foundation/Text.h>

#include <unicode/translit.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <memory>
#include <string>

using namespace ZORFoundation;
using fuzz::require;

namespace {

std::u16string decodedByIcu(std::u16string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    static const std::unique_ptr<icu::Transliterator> transform(
        icu::Transliterator::createInstance("Any-Hex/Java", UTRANS_REVERSE, status));
    icu::UnicodeString result(text.data(), static_cast<std::int32_t>(text.size()));
    transform->transliterate(result);
    return {result.getBuffer(), static_cast<std::size_t>(result.length())};
}

std::u16string escaped(std::u16string_view text) {
    constexpr std::u16string_view kDigits = u"0123456789abcdef";
    std::u16string result;
    for (const char16_t unit : text) {
        result += u"\\u";
        for (const int shift : {12, 8, 4, 0}) result += kDigits[static_cast<std::size_t>(unit >> shift & 15)];
    }
    return result;
}

void requireEscapesComeBack(std::u16string_view text) {
    require(StringExtension::withEmojis(text) == decodedByIcu(text));
    require(StringExtension::withEmojis(escaped(text)) == text);
}

void requireOneSpaceAtATime(std::u16string_view text) {
    const std::u16string collapsed = StringExtension::removeConsecutiveSpaces(text);
    require(collapsed.find(u"  ") == std::u16string::npos);
    require(StringExtension::removeConsecutiveSpaces(collapsed) == collapsed);
    std::u16string without(text);
    std::u16string collapsedWithout = collapsed;
    std::erase(without, u' ');
    std::erase(collapsedWithout, u' ');
    require(without == collapsedWithout);
}

void requireAscii(std::u16string_view text) {
    const std::u16string ascii = ZORExtra::removeAccents(text);
    require(std::all_of(ascii.begin(), ascii.end(), [](char16_t unit) { return unit < 0x80; }));
    require(ZORExtra::removeAccents(ascii) == ascii);
}

// The first part of a text, cut between characters, is in it; so it is in another case.
void requireFindsItsParts(std::u16string_view text) {
    const std::size_t middle = ZORPlatform::characterPosition(text, ZORPlatform::characterCount(text) / 2).value_or(0);
    const std::u16string_view part = text.substr(0, middle);
    require(ZORExtra::zor_containsSubstring(text, part) == !part.empty());
    require(ZORExtra::zor_containsSubstring(text, ZORPlatform::canonicalCaseFolding(part)) == !part.empty());
    std::u16string prepared = ZORPlatform::lowercased(text);
    std::erase(prepared, u' ');
    require(ZORSubstringSearch::zor_hasSubString(text, prepared) == !prepared.empty());
}

void requireReplacementsGo(std::u16string_view text) {
    if (text.size() < 2) return;
    const std::u16string_view target = text.substr(0, 1 + text[0] % 3U % text.size());
    std::u16string replaced(text);
    StringExtension::replace(replaced, target, u"");
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(target, at)) != std::u16string_view::npos; at += target.size()) ++count;
    require(replaced.size() == text.size() - count * target.size());
    std::u16string same(text);
    StringExtension::replace(same, target, target);
    require(same == text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::Text input(data, size);
    const std::u16string_view text = input.view();
    requireEscapesComeBack(text);
    requireOneSpaceAtATime(text);
    requireAscii(text);
    requireFindsItsParts(text);
    requireReplacementsGo(text);
    (void)StringExtension::emojiFlag(text);
    (void)StringExtension::uppercaseFirst(text);
    (void)StringExtension::replaceFirstCharactersBeforeFirstDigit(text, u"X");
    return 0;
}
