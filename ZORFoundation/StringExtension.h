// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the library adds to text values: positions in user-perceived characters, and small conversions.
//
// A character here is an extended grapheme cluster (Unicode Annex 29): an accented letter, CR LF, a flag and an emoji
// with its modifiers are one each. Only `replaceCharactersInRange` counts UTF-16 units. Of the operations that
// ZORExtra has, too, only the names are alike: `preparedURLString` here puts another scheme in front.
//
//     std::u16string text = u"h\u00E9llo";
//     StringExtension::substringWithRange(text, {1, 3});         // u"\u00E9l"
//     StringExtension::replaceCharactersInRange(text, {0, 1}, u"J");   // u"J\u00E9llo"

#include <ZORPlatform/Export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ZORFoundation {

/// A half-open range: from `lower` up to, not including, `upper`.
struct Range {
    std::int64_t lower;
    std::int64_t upper;

    friend constexpr bool operator==(const Range&, const Range&) noexcept = default;
};

namespace StringExtension {

/// `replace(_:with:)`
///
/// Replaces in `text` itself every occurrence of `target`, unit by unit and case-sensitive, from the left and without
/// overlap. What has been put in is not searched again.
///
/// @param target  the empty text occurs nowhere
ZOR_EXPORT void replace(std::u16string& text, std::u16string_view target, std::u16string_view with);

/// `length`
///
/// The number of characters of `text`, 0 for the empty text. Pure.
[[nodiscard]] ZOR_EXPORT std::int64_t length(std::u16string_view text);

/// `boolValue`
///
/// Whether a text means yes: behind leading white space and line ends, one optional "+" or "-" and zeros, it goes on
/// with one of "YyTt" or a digit from 1 to 9. The rest is ignored. Pure.
///
/// @param text  absent counts as empty, which is false
[[nodiscard]] ZOR_EXPORT bool boolValue(std::u16string_view text) noexcept;

/// `substringToIndex`
///
/// The first `index` characters. Reads no further than where they end.
///
/// A negative index, and one above the number of characters, stop the process. Pure.
[[nodiscard]] ZOR_EXPORT std::u16string substringToIndex(std::u16string_view text, std::int64_t index);

/// `substringFromIndex`
///
/// Everything from character `index` on, counted from 0; empty when `index` is the number of characters.
///
/// A negative index, and one above the number of characters, stop the process. Pure.
[[nodiscard]] ZOR_EXPORT std::u16string substringFromIndex(std::u16string_view text, std::int64_t index);

/// `substringWithRange`
///
/// The characters from `range.lower` up to, not including, `range.upper`, counted from 0.
///
/// A negative bound, one above the number of characters, and an upper bound below the lower one stop the process. Pure.
[[nodiscard]] ZOR_EXPORT std::u16string substringWithRange(std::u16string_view text, Range range);

/// `subscript` with an integer
///
/// Character `index`, counted from 0.
///
/// A negative index, and one not below the number of characters, stop the process. Pure.
[[nodiscard]] ZOR_EXPORT std::u16string subscript(std::u16string_view text, std::int64_t index);

/// `subscript` with a range: `substringWithRange`.
[[nodiscard]] ZOR_EXPORT std::u16string subscript(std::u16string_view text, Range range);

/// `replaceCharactersInRange(_:withString:)`
///
/// A copy of `text` with the UTF-16 units of `range` replaced. Characters and surrogate pairs are cut where the range
/// cuts them.
///
/// @param withString  absent stops the process
/// @throws NSException  named "NSRangeException" when the range is not inside the text
///
/// Pure.
[[nodiscard]] ZOR_EXPORT std::u16string replaceCharactersInRange(std::u16string_view text, Range range,
                                                                 std::optional<std::u16string_view> withString);

/// `preparedURLString`
///
/// `text` itself when it holds a ":" anywhere, else with "http://" in front. The twin of ZORExtra,
/// `zor_preparedURLString`, puts "https://" there. Pure.
///
/// @param text  absent counts as empty
[[nodiscard]] ZOR_EXPORT std::u16string preparedURLString(std::u16string_view text);

/// `uppercaseFirst`
///
/// `text` with its first character in upper case, which may make it longer: "ß" gives "SS". Full Unicode mapping
/// without a locale. The empty text gives the empty text. Pure.
[[nodiscard]] ZOR_EXPORT std::u16string uppercaseFirst(std::u16string_view text);

/// `replaceFirstCharactersBeforeFirstDigit`
///
/// Counts the letters (general categories L and M) before the first decimal digit, of any script, and gives `prefix`
/// followed by `text` without its first so many characters. The count is of letters alone, yet the cut takes the
/// leading characters whatever they are: with the prefix X, "AB-12" gives "X-12" and "A-B12" gives "XB12". A count
/// above the number of characters, which combining marks can make, takes them all. Pure.
///
/// @param text  absent counts as empty, which gives the prefix
[[nodiscard]] ZOR_EXPORT std::u16string replaceFirstCharactersBeforeFirstDigit(std::u16string_view text,
                                                                               std::u16string_view prefix);

/// `removeConsecutiveSpaces`
///
/// `text` with every run of U+0020 as a single one. Other white space stays. Pure.
[[nodiscard]] ZOR_EXPORT std::u16string removeConsecutiveSpaces(std::u16string_view text);

/// `emojiFlag`
///
/// Upper-cases `text`, moves each Unicode scalar up by 127397, so that "A" becomes the regional indicator A, and writes
/// it as Optional("…"), quotes included: "be" gives Optional("🇧")Optional("🇪"), not a flag alone. A scalar moved above
/// U+10FFFF is written "nil". Digits and signs are moved like letters. The empty text gives the empty text. Pure.
[[nodiscard]] ZOR_EXPORT std::u16string emojiFlag(std::u16string_view text);

/// `withEmojis`
///
/// `text` with each "\u" and its four hexadecimal digits, of either case, replaced by the UTF-16 unit that they write;
/// a surrogate pair is two such escapes. Everything else stays, other escapes and unfinished ones included. What comes
/// out is not read again. Pure.
[[nodiscard]] ZOR_EXPORT std::u16string withEmojis(std::u16string_view text);

}  // namespace StringExtension
}  // namespace ZORFoundation
