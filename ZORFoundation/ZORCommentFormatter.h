// SPDX-License-Identifier: Apache-2.0
#pragma once

// Structured payment comments, the 12-digit references that people see as "+++ 123 / 4567 / 89002 +++". Whether one is
// valid is asked of ZORCommentValidator, with the stripped form. Lengths are UTF-16 units.

#include <ZORPlatform/Export.h>

#include <string>
#include <string_view>

namespace ZORFoundation {

/// Strips and displays structured comments. An absent text counts as empty. Both operations are pure and may be called
/// from any thread.
class ZORCommentFormatter {
public:
    ZORCommentFormatter() = delete;

    /// `strippedStructuredComment:`
    ///
    /// Keeps the decimal digits of `text`, of any script (general category Nd), and drops everything else.
    [[nodiscard]] ZOR_EXPORT static std::u16string strippedStructuredComment(std::u16string_view text);

    /// `formattedStructuredComment:`
    ///
    /// Writes a structured comment in three groups of 3, 4 and 5 units between "+++" marks, every blank a U+00A0.
    ///
    /// @param text  any spelling, a display included: it is stripped first
    /// @return always the same shape: "_" stands for digits that are still missing, digits beyond the twelfth unit are
    ///         dropped. Empty when `text` has no digit
    [[nodiscard]] ZOR_EXPORT static std::u16string formattedStructuredComment(std::u16string_view text);
};

}  // namespace ZORFoundation
