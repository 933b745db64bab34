// SPDX-License-Identifier: Apache-2.0
#pragma once

// Belgian numbers of persons: the national registration number, 11 digits, and the number of the national identity
// document, 12 digits. Nothing is stripped: separators make a number invalid. Lengths and positions are UTF-16 units.
//
//     ZORNationalRegistrationNumberValidator::isValidNationalRegistrationNumber(u"90011775352");   // true
//     ZORNationalRegistrationNumberValidator::isValidNationalDocumentNumber(u"000000000000");      // true

#include <ZORFoundation/Explanation.h>
#include <ZORPlatform/Export.h>

#include <string_view>

namespace ZORFoundation {

/// Validates national registration and document numbers. All operations are pure, may be called from any thread, and
/// allocate nothing. An absent text counts as empty, which is not valid.
class ZORNationalRegistrationNumberValidator {
public:
    ZORNationalRegistrationNumberValidator() = delete;

    /// `isValidNationalRegistrationNumber:`
    ///
    /// Whether `text` has 11 units, is numeric (leading spaces are allowed), and ends in 97 less the remainder by 97 of
    /// its first nine units, or of these with a "2" before them, as for people born since 2000. Check digits 00 are
    /// never valid.
    [[nodiscard]] ZOR_EXPORT static bool isValidNationalRegistrationNumber(std::u16string_view text) noexcept;

    /// `explainNationalRegistrationNumber`
    ///
    /// Finds the first rule of `isValidNationalRegistrationNumber:` that `text` breaks.
    ///
    /// @return in this order: `length` (exactly 11); `unexpectedCharacter`, at the first unit after leading spaces that
    ///         is no ASCII digit, or at the last of eleven spaces; `checkDigits`, at position 9. `none` exactly when
    ///         `isValidNationalRegistrationNumber(text)`
    [[nodiscard]] ZOR_EXPORT static Explanation explainNationalRegistrationNumber(std::u16string_view text) noexcept;

    /// `isValidNationalDocumentNumber:`
    ///
    /// Whether `text` has 12 units, is numeric (leading spaces are allowed), and ends in the remainder of its first ten
    /// units by 97. A remainder of 0 stays 0, unlike in account numbers, comments and access numbers: such a number
    /// ends in 00, and check digits 97 are never valid.
    [[nodiscard]] ZOR_EXPORT static bool isValidNationalDocumentNumber(std::u16string_view text) noexcept;

    /// `explainNationalDocumentNumber`
    ///
    /// Finds the first rule of `isValidNationalDocumentNumber:` that `text` breaks.
    ///
    /// @return as `explainNationalRegistrationNumber`, for a length of exactly 12 and check digits at position 10
    [[nodiscard]] ZOR_EXPORT static Explanation explainNationalDocumentNumber(std::u16string_view text) noexcept;
};

}  // namespace ZORFoundation
