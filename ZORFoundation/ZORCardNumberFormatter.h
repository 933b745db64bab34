// SPDX-License-Identifier: Apache-2.0
#pragma once

// Payment card numbers of 17 digits: their displays, and the Luhn check (ISO/IEC 7812-1, annex B). The four displays
// differ on purpose in what they strip, how they treat a short text, and which separator stands before the last digit.
// Lengths and positions are UTF-16 units.
//
//     ZORCardNumberFormatter::isValidCardNumber(u"6703 4444 4444 4444 1");          // true
//     ZORCardNumberFormatter::formattedCardNumberOptimal(u"123456789");             // 1234 5678 9
//     ZORCardNumberFormatter::explainCardNumber(u"6703-4444").rule;                 // BrokenRule::length

#include <ZORFoundation/Explanation.h>
#include <ZORPlatform/Export.h>

#include <string>
#include <string_view>

namespace ZORFoundation {

/// Strips, displays and validates card numbers. An absent text counts as empty everywhere. All operations are pure and
/// may be called from any thread.
class ZORCardNumberFormatter {
public:
    ZORCardNumberFormatter() = delete;

    /// `strippedCardNumber:`
    ///
    /// Takes every U+0020 and U+00A0 out of `text` and changes nothing else. A "-" stays, unlike in
    /// ZORAccountNumberFormatter.
    [[nodiscard]] ZOR_EXPORT static std::u16string strippedCardNumber(std::u16string_view text);

    /// `formattedCardNumber:`
    ///
    /// Writes a card number as four groups of four and a last unit, U+00A0 between all five. Nothing is stripped:
    /// separators in `text` count as units of the number.
    ///
    /// @return always 21 units: a short number is padded with spaces, a long one is cut to 17
    [[nodiscard]] ZOR_EXPORT static std::u16string formattedCardNumber(std::u16string_view text);

    /// `formattedCardNumberOptimal:`
    ///
    /// Writes a card number the way it grows while it is typed: stripped, in groups of four with U+00A0 between them,
    /// without padding and without a separator at the end.
    ///
    /// @return the display of the first 17 units; empty when nothing is left once separators are out
    [[nodiscard]] ZOR_EXPORT static std::u16string formattedCardNumberOptimal(std::u16string_view text);

    /// `formattedCreditCard:`
    ///
    /// Writes a card number as four groups of four with U+00A0 between them, then an ordinary U+0020 and the last unit.
    /// The mixture of separators is deliberate. Only U+0020 is stripped before; a U+00A0 counts as a unit of the
    /// number.
    ///
    /// @return always 21 units: a short number is padded with spaces, a long one is cut to 17
    [[nodiscard]] ZOR_EXPORT static std::u16string formattedCreditCard(std::u16string_view text);

    /// `isValidCardNumber:`
    ///
    /// Whether `text`, once U+0020 and U+00A0 are out, has exactly 17 units, all decimal digits, with a Luhn sum that
    /// is a multiple of 10. Digits of other scripts than ASCII pass, and count as 0 in the sum. No prefix and no issuer
    /// is checked. Allocates nothing.
    ///
    /// @param text  any spelling with those two separators
    [[nodiscard]] ZOR_EXPORT static bool isValidCardNumber(std::u16string_view text) noexcept;

    /// `explainCardNumber`
    ///
    /// Finds the first rule of `isValidCardNumber:` that `text` breaks.
    ///
    /// @return in this order: `length` (found once separators are out, expected exactly 17), at the first surplus unit
    ///         or the end of the text; `unexpectedCharacter`, at the first that is neither separator nor decimal digit;
    ///         `checkDigits`, at the last digit. `none` exactly when `isValidCardNumber(text)`. Positions are those of
    ///         `text` itself, separators included
    [[nodiscard]] ZOR_EXPORT static Explanation explainCardNumber(std::u16string_view text) noexcept;
};

}  // namespace ZORFoundation
