// SPDX-License-Identifier: Apache-2.0
#pragma once

// A typed amount as an exact decimal number.
//
//     ZORAmountFormatter::amountFromString(u"1 234,56");   // 1234.56
//     ZORAmountFormatter::amountFromString(u"1.234,56");   // 1.234: grouping marks must be spaces

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSDecimalNumber.h>

#include <optional>
#include <string_view>

namespace ZORFoundation {

using ZORPlatform::NSDecimalNumber;

/// Reads amounts. Pure, allocates nothing.
class ZORAmountFormatter {
public:
    ZORAmountFormatter() = delete;

    /// `amountFromString:`
    ///
    /// Reads the number that `text` begins with, with every U+0020 and U+00A0 left out and every "," read as ".". Not
    /// bound to a locale. What follows the number is ignored; neither shape nor size is checked, see
    /// `isValidInputAmount`.
    ///
    /// @return absent exactly when `text` is; not-a-number when `text` does not begin with a number
    [[nodiscard]] ZOR_EXPORT static std::optional<NSDecimalNumber> amountFromString(
        std::optional<std::u16string_view> text) noexcept;
};

}  // namespace ZORFoundation
