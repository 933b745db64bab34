// SPDX-License-Identifier: Apache-2.0
#pragma once

// Whether a text is a structured payment comment. The text must be stripped already, see ZORCommentFormatter: the
// display form is not valid. Lengths and positions are UTF-16 units.
//
//     ZORCommentValidator::isValidStructuredComment(u"123456789002");   // true

#include <ZORFoundation/Explanation.h>
#include <ZORPlatform/Export.h>

#include <string_view>

namespace ZORFoundation {

/// Validates structured comments. Both operations are pure, may be called from any thread, and allocate nothing.
class ZORCommentValidator {
public:
    ZORCommentValidator() = delete;

    /// `isValidStructuredComment:`
    ///
    /// Whether `text` has 12 units, is numeric (leading spaces are allowed), and ends in the remainder of its first ten
    /// units by 97, with 97 in place of 0. Check digits 00 are never valid.
    ///
    /// @param text  stripped; absent counts as empty, which is not valid
    [[nodiscard]] ZOR_EXPORT static bool isValidStructuredComment(std::u16string_view text) noexcept;

    /// `explainStructuredComment`
    ///
    /// Finds the first rule of `isValidStructuredComment:` that `text` breaks.
    ///
    /// @return in this order: `length` (exactly 12); `unexpectedCharacter`, at the first unit after leading spaces that
    ///         is no ASCII digit, or at the last of twelve spaces; `checkDigits`, at position 10. `none` exactly when
    ///         `isValidStructuredComment(text)`
    [[nodiscard]] ZOR_EXPORT static Explanation explainStructuredComment(std::u16string_view text) noexcept;
};

}  // namespace ZORFoundation
