// SPDX-License-Identifier: Apache-2.0
#pragma once

// Questions about text that need Unicode's tables: user-perceived characters, scalars, case and character sets.
// A text is UTF-16; a position is a UTF-16 unit; a character is an extended grapheme cluster (Unicode Annex 29 as of
// Unicode 15, with CLDR's rule for consonants that a virama links), so CR LF, a flag and an emoji with its modifiers
// are one character each. Lone surrogates are allowed everywhere and count as scalars of their own. All functions are
// pure and may be called from any thread.
//
//     for (std::size_t at = 0; at < text.size(); at = characterEnd(text, at)) { ... }

#include <ZORPlatform/Export.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// Below this unit nothing extends a character, and the only pair that stays together is CR LF.
inline constexpr char16_t kFirstCombining = 0x0300;

/// `characterEnd` by Unicode's rules, for what `characterEnd` does not see at a glance.
[[nodiscard]] ZOR_EXPORT std::size_t characterEndByRules(std::u16string_view text, std::size_t begin);

/// The end of the character that begins at `begin`.
///
/// @param begin  a position where a character begins, below `text.size()`
/// @return a position above `begin`, at most `text.size()`
[[nodiscard]] inline std::size_t characterEnd(std::u16string_view text, std::size_t begin) {
    if (begin + 1 == text.size()) return begin + 1;
    const char16_t unit = text[begin];
    const char16_t next = text[begin + 1];
    if (unit < kFirstCombining && next < kFirstCombining) return begin + (unit == u'\r' && next == u'\n' ? 2 : 1);
    return characterEndByRules(text, begin);
}

/// The number of characters of `text`, 0 for the empty text.
[[nodiscard]] ZOR_EXPORT std::size_t characterCount(std::u16string_view text);

/// The position where character number `index` begins, counted from 0; `text.size()` when `index` is the number of
/// characters; `std::nullopt` above it. Reads no further than that position.
[[nodiscard]] ZOR_EXPORT std::optional<std::size_t> characterPosition(std::u16string_view text, std::size_t index);

/// The number of whole characters that end at or before `position`, which is the index of the character that holds
/// the unit there.
///
/// @param position  at most `text.size()`
[[nodiscard]] ZOR_EXPORT std::size_t characterIndex(std::u16string_view text, std::size_t position);

/// A canonical decomposition only ever begins at this unit and above.
inline constexpr char16_t kFirstDecomposable = 0xC0;

/// `canonicallyEqual` by way of normalised copies, for what `canonicallyEqual` does not see at a glance.
[[nodiscard]] ZOR_EXPORT bool canonicallyEqualByForms(std::u16string_view left, std::u16string_view right);

/// Whether two texts are the same once both are in a canonical normalisation form.
[[nodiscard]] inline bool canonicallyEqual(std::u16string_view left, std::u16string_view right) {
    if (left.size() == 1 && right.size() == 1 && left[0] < kFirstDecomposable && right[0] < kFirstDecomposable) {
        return left[0] == right[0];
    }
    return canonicallyEqualByForms(left, right);
}

/// The full canonical decomposition of `text`, its marks in canonical order (normalisation form D). Texts are
/// canonically equal exactly when these are the same.
[[nodiscard]] ZOR_EXPORT std::u16string canonicalDecomposition(std::u16string_view text);

/// The full canonical decomposition of `text` without its case: "\u00DF" and "SS" both give "ss", and so do all
/// canonically equivalent spellings. No locale has a say, so the dotless i stays.
[[nodiscard]] ZOR_EXPORT std::u16string canonicalCaseFolding(std::u16string_view text);

/// A Unicode scalar, or a lone surrogate, and the position after it.
struct ScalarStep {
    char32_t scalar;
    std::size_t end;
};

/// The scalar at `begin`, which must be below `text.size()`.
[[nodiscard]] constexpr ScalarStep scalarAt(std::u16string_view text, std::size_t begin) noexcept {
    const char32_t lead = text[begin];
    if (lead >= 0xD800 && lead < 0xDC00 && begin + 1 < text.size()) {
        const char32_t trail = text[begin + 1];
        if (trail >= 0xDC00 && trail < 0xE000) {
            return {0x10000 + ((lead - 0xD800) << 10) + (trail - 0xDC00), begin + 2};
        }
    }
    return {lead, begin + 1};
}

/// Appends a scalar below U+110000 as one or two units.
ZOR_EXPORT void appendScalar(std::u16string& text, char32_t scalar);

/// Full Unicode upper-casing without a locale: "ß" gives "SS", so the result may be longer.
[[nodiscard]] ZOR_EXPORT std::u16string uppercased(std::u16string_view text);

/// `uppercased(text)` in place, without allocation where only ASCII letters have an upper case.
ZOR_EXPORT void uppercase(std::u16string& text);

/// The upper case of one unit: one to three units.
struct UppercasedUnit {
    std::array<char16_t, 3> units{};
    std::size_t count = 0;

    [[nodiscard]] constexpr std::u16string_view view() const noexcept { return {units.data(), count}; }
};

/// Full Unicode upper-casing of a text of one unit, without allocation. A surrogate stays as it is.
[[nodiscard]] ZOR_EXPORT UppercasedUnit uppercased(char16_t unit) noexcept;

/// Full Unicode lower-casing without a locale; a final sigma is recognised.
[[nodiscard]] ZOR_EXPORT std::u16string lowercased(std::u16string_view text);

/// The platform's white-space set: U+0009, U+0020, U+00A0, U+1680, U+2000 to U+200B, U+202F, U+205F, U+3000.
[[nodiscard]] constexpr bool isWhitespace(char16_t unit) noexcept {
    return unit == 0x09 || unit == 0x20 || unit == 0xA0 || unit == 0x1680 || (unit >= 0x2000 && unit <= 0x200B) ||
           unit == 0x202F || unit == 0x205F || unit == 0x3000;
}

/// The platform's line-end set: U+000A to U+000D, U+0085, U+2028, U+2029.
[[nodiscard]] constexpr bool isNewline(char16_t unit) noexcept {
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

/// Unicode's property White_Space, which a regular expression's "\s" matches: U+0009 to U+000D, U+0020, U+0085,
/// U+00A0, U+1680, U+2000 to U+200A, U+2028, U+2029, U+202F, U+205F, U+3000. Unlike the platform's own sets it lacks
/// U+200B.
[[nodiscard]] constexpr bool isUnicodeWhiteSpace(char16_t unit) noexcept {
    return (isWhitespace(unit) && unit != 0x200B) || isNewline(unit);
}

/// `text` without white space and line ends at both ends.
[[nodiscard]] constexpr std::u16string_view trimmed(std::u16string_view text) noexcept {
    const auto trims = [](char16_t unit) {
        const bool isPlain = unit > 0x20 && unit < 0x7F;
        return !isPlain && (isWhitespace(unit) || isNewline(unit));
    };
    while (!text.empty() && trims(text.front())) text.remove_prefix(1);
    while (!text.empty() && trims(text.back())) text.remove_suffix(1);
    return text;
}

/// The platform's letter set: general categories L* and M*, so combining marks are members.
[[nodiscard]] ZOR_EXPORT bool isLetter(char32_t scalar) noexcept;

/// The platform's decimal-digit set, which a regular expression's "\d" matches: general category Nd, of any script, as
/// of Unicode 15.
[[nodiscard]] ZOR_EXPORT bool isDecimalDigit(char32_t scalar) noexcept;

}  // namespace ZORPlatform
