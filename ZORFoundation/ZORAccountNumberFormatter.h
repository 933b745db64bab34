// SPDX-License-Identifier: Apache-2.0
#pragma once

// Account numbers the way people read them. Nothing here asks whether a number is valid, except the choice that
// `autoFormattedAccountNumber` makes: see ZORAccountNumberValidator. Lengths and positions are UTF-16 units.
//
//     ZORAccountNumberFormatter::formattedAccountNumberAsIban(u"be68-5390-0754-7034");   // BE68 5390 0754 7034
//     ZORAccountNumberFormatter::formattedAccountNumberAsBban(u"539007547034");          // 539-0075470-34
//     ZORAccountNumberFormatter::strippedAccountNumber(u"539-0075470-34");               // 539007547034

#include <ZORPlatform/Export.h>

#include <optional>
#include <string>
#include <string_view>

namespace ZORFoundation {

/// Strips and displays account numbers. All operations are pure and may be called from any thread.
class ZORAccountNumberFormatter {
public:
    ZORAccountNumberFormatter() = delete;

    /// `strippedAccountNumber:`
    ///
    /// Takes every U+0020, "-" and U+00A0 out of `text` and changes nothing else.
    ///
    /// @param text  absent counts as empty
    [[nodiscard]] ZOR_EXPORT static std::u16string strippedAccountNumber(std::u16string_view text);

    /// `formattedAccountNumberAsIban:`
    ///
    /// Writes an account number in groups of four joined by U+00A0, in capitals.
    ///
    /// @param text  any spelling: it is stripped first; absent counts as empty
    /// @return the display of the first 32 units, the longest number that is ever valid: a number of 33 or 34 units
    ///         loses its end. White space and line ends at both ends are trimmed once the groups stand. Upper-casing
    ///         is Unicode's, so other characters than letters of an IBAN may make the text longer. Empty when nothing
    ///         is left once separators are out
    [[nodiscard]] ZOR_EXPORT static std::u16string formattedAccountNumberAsIban(std::u16string_view text);

    /// `formattedAccountNumberAsBban:`
    ///
    /// Writes an account number as three, seven and two units joined by "-".
    ///
    /// @param text  any spelling: it is stripped first; absent counts as empty
    /// @return always 14 units, so a short number is padded with spaces inside its groups and a long one is cut;
    ///         empty when nothing is left once separators are out
    [[nodiscard]] ZOR_EXPORT static std::u16string formattedAccountNumberAsBban(std::u16string_view text);

    /// `formattedAccountNumber:asIban:`
    ///
    /// Writes an account number in the form that the caller names.
    ///
    /// @param asIban  true: as `formattedAccountNumberAsIban`; false: as `formattedAccountNumberAsBban`
    [[nodiscard]] ZOR_EXPORT static std::u16string formattedAccountNumber(std::u16string_view text, bool asIban);

    /// `autoFormattedAccountNumber:`
    ///
    /// Writes an account number in the form in which it is valid once stripped, the international one first.
    ///
    /// @return the display; the stripped text when it is valid in neither form; `std::nullopt` for an absent text
    [[nodiscard]] ZOR_EXPORT static std::optional<std::u16string> autoFormattedAccountNumber(
        std::optional<std::u16string_view> text);
};

}  // namespace ZORFoundation
