// SPDX-License-Identifier: Apache-2.0
#pragma once

// The 13-digit numbers with which customers sign in. Nothing is stripped: separators make a number invalid. Lengths and
// positions are UTF-16 units.
//
//     ZORAccessNumberValidator::isAccessNumberValid(u"0000000000097");   // true

#include <ZORFoundation/Explanation.h>
#include <ZORPlatform/Export.h>

#include <string_view>

namespace ZORFoundation {

/// Validates access numbers. Both operations are pure, may be called from any thread, and allocate nothing. An absent
/// text counts as empty, which is not valid.
class ZORAccessNumberValidator {
public:
    ZORAccessNumberValidator() = delete;

    /// `isAccessNumberValid:`
    ///
    /// Whether `text` has 13 units, is numeric (leading spaces are allowed), and ends in the remainder of its first
    /// eleven units by 97, with 97 in place of 0. Check digits 00 are never valid.
    [[nodiscard]] ZOR_EXPORT static bool isAccessNumberValid(std::u16string_view text) noexcept;

    /// `explainAccessNumber`
    ///
    /// Finds the first rule of `isAccessNumberValid:` that `text` breaks.
    ///
    /// @return in this order: `length` (exactly 13); `unexpectedCharacter`, at the first unit after leading spaces that
    ///         is no ASCII digit, or at the last of thirteen spaces; `checkDigits`, at position 11. `none` exactly when
    ///         `isAccessNumberValid(text)`
    [[nodiscard]] ZOR_EXPORT static Explanation explainAccessNumber(std::u16string_view text) noexcept;
};

}  // namespace ZORFoundation
