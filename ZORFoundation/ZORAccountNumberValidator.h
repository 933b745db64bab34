// SPDX-License-Identifier: Apache-2.0
#pragma once

// Whether a text is an account number: international (IBAN, ISO 13616) or Belgian domestic (BBAN). The text must be
// stripped already, see ZORAccountNumberFormatter; lengths and positions are UTF-16 units.
//
//     ZORAccountNumberValidator::isValidIban(u"BE68539007547034");   // true
//     ZORAccountNumberValidator::isValidIban(u"BE68 5390 0754 7034");   // false: not stripped
//     ZORAccountNumberValidator::explainBban(u"539007547035").rule;   // BrokenRule::checkDigits

#include <ZORFoundation/Explanation.h>
#include <ZORPlatform/Export.h>

#include <string_view>

namespace ZORFoundation {

/// Validates account numbers. All operations are pure, may be called from any thread, and allocate nothing.
class ZORAccountNumberValidator {
public:
    ZORAccountNumberValidator() = delete;

    /// `isValidIban:`
    ///
    /// Whether `text` is an international account number: 5 to 32 units, exactly 16 when it begins with "BE", and a
    /// remainder of 1 by 97 (ISO 7064, mod 97-10) once the first four units stand last and letters are replaced by
    /// their numbers, "A" by 10 to "Z" by 35.
    ///
    /// Small letters count as capitals, but only a capital "BE" fixes the length. No other country has a length of its
    /// own, and the first four units need not be two letters and two digits. A unit that is neither letter nor digit
    /// does not make the text invalid by itself: it hides the rest of its piece from `modulo97:`.
    ///
    /// @param text  stripped; absent counts as empty, which is not valid
    [[nodiscard]] ZOR_EXPORT static bool isValidIban(std::u16string_view text) noexcept;

    /// `isValidBban:`
    ///
    /// Whether `text` is a Belgian domestic account number: 12 units, numeric (leading spaces are allowed), whose last
    /// two are the remainder of the first ten by 97, with 97 in place of 0. Check digits 00 are never valid.
    ///
    /// @param text  stripped; absent counts as empty, which is not valid
    [[nodiscard]] ZOR_EXPORT static bool isValidBban(std::u16string_view text) noexcept;

    /// `explainIban`
    ///
    /// Finds the first rule of `isValidIban:` that `text` breaks.
    ///
    /// @return in this order: `empty`; `tooShort` (expected: at least 5); `tooLong` (at most 32); `countryLength`
    ///         (exactly 16 after "BE"); `unexpectedCharacter`, at the first unit that is no ASCII letter or digit;
    ///         `checkDigits`, at position 2. `none` exactly when `isValidIban(text)`: an odd character in a number
    ///         that is valid nevertheless is not reported
    [[nodiscard]] ZOR_EXPORT static Explanation explainIban(std::u16string_view text) noexcept;

    /// `explainBban`
    ///
    /// Finds the first rule of `isValidBban:` that `text` breaks.
    ///
    /// @return in this order: `length` (exactly 12); `unexpectedCharacter`, at the first unit after leading spaces that
    ///         is no ASCII digit, or at the last of twelve spaces; `checkDigits`, at position 10. `none` exactly when
    ///         `isValidBban(text)`
    [[nodiscard]] ZOR_EXPORT static Explanation explainBban(std::u16string_view text) noexcept;
};

}  // namespace ZORFoundation
