// SPDX-License-Identifier: Apache-2.0
#pragma once

// Checks on a whole text that need no context. Those of texts for the back end and for messages say which characters
// are allowed, and letters there stand for themselves in both cases; an absent text counts as empty, which is allowed.
//
//     StringExtension::isValidMessageBody(u"Rent, May\n€ 750");             // true
//     StringExtension::explainMessageBody(u"Rent\t$").position;             // 4, the tab
//
// Each check has an explaining twin, which answers `BrokenRule::none` exactly when the check answers true.

#include <ZORFoundation/Explanation.h>
#include <ZORPlatform/Export.h>

#include <string_view>

namespace ZORFoundation::StringExtension {

/// `isNumeric`
///
/// Whether `text` is zero or more U+0020 spaces followed by one or more ASCII digits, and nothing else. Leading
/// spaces are allowed on purpose; a trailing one, a sign or a digit of another script is not.
///
/// @param text  absent counts as empty, which is not numeric
///
/// Pure. No allocation.
[[nodiscard]] ZOR_EXPORT bool isNumeric(std::u16string_view text) noexcept;

/// The twin of `isNumeric`: `empty`, `unexpectedCharacter`, `incomplete` for a text of spaces. Pure.
[[nodiscard]] ZOR_EXPORT Explanation explainNumeric(std::u16string_view text);

/// `isValidBcmcReference`
///
/// Whether every character of `text`, the reference of a Bancontact/Mister Cash payment, is an ASCII letter or digit, a
/// space or a backslash. The long s (U+017F) and the Kelvin sign (U+212A) count as "s" and "k". There is no limit of
/// length.
///
/// @param text  absent counts as empty, which is valid
///
/// Pure. No allocation.
[[nodiscard]] ZOR_EXPORT bool isValidBcmcReference(std::u16string_view text) noexcept;

/// The twin of `isValidBcmcReference`: `unexpectedCharacter`. Pure.
[[nodiscard]] ZOR_EXPORT Explanation explainBcmcReference(std::u16string_view text);

/// `containsOnlyValidCharacters`
///
/// Whether every character of `text` is an ASCII letter or digit, a space, one of "&'()*+,-./:?@ and the double quote,
/// or one of the letters àâäçèéêëíîïóôöùûü in either case. The long s (U+017F) and the Kelvin sign (U+212A) count as
/// "s" and "k". A letter written with a combining mark is not allowed.
///
/// @param text  absent counts as empty, which is valid
///
/// Pure. No allocation.
[[nodiscard]] ZOR_EXPORT bool containsOnlyValidCharacters(std::u16string_view text) noexcept;

/// The twin of `containsOnlyValidCharacters`: `unexpectedCharacter`. Pure.
[[nodiscard]] ZOR_EXPORT Explanation explainOnlyValidCharacters(std::u16string_view text);

/// `isValidBackendInputString`
///
/// Whether `text` has at most 70 UTF-16 units and `containsOnlyValidCharacters`.
///
/// @param text  absent counts as empty, which is valid
///
/// Pure. No allocation.
[[nodiscard]] ZOR_EXPORT bool isValidBackendInputString(std::u16string_view text) noexcept;

/// The twin of `isValidBackendInputString`: `unexpectedCharacter`, `tooLong` in UTF-16 units. Pure.
[[nodiscard]] ZOR_EXPORT Explanation explainBackendInputString(std::u16string_view text);

/// `isValidMessageBody`
///
/// Whether every character of `text` is one that `containsOnlyValidCharacters` allows, except the letters êíó in either
/// case, or one of !#%;<=>_€ and the backslash, or a line end (U+000A to U+000D, U+0085, U+2028, U+2029). There is no
/// limit of length.
///
/// @param text  absent counts as empty, which is valid
///
/// Pure. No allocation.
[[nodiscard]] ZOR_EXPORT bool isValidMessageBody(std::u16string_view text) noexcept;

/// The twin of `isValidMessageBody`: `unexpectedCharacter`. Pure.
[[nodiscard]] ZOR_EXPORT Explanation explainMessageBody(std::u16string_view text);

/// `isValidResponse`
///
/// Whether `text` has 5 to 8 UTF-16 units, whatever they are.
///
/// @param text  absent counts as empty, which is not valid
///
/// Pure. No allocation.
[[nodiscard]] ZOR_EXPORT bool isValidResponse(std::u16string_view text) noexcept;

/// The twin of `isValidResponse`: `empty`, and `tooShort` and `tooLong` in UTF-16 units. Pure.
[[nodiscard]] ZOR_EXPORT Explanation explainResponse(std::u16string_view text);

}  // namespace ZORFoundation::StringExtension
