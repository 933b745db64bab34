// SPDX-License-Identifier: Apache-2.0
#pragma once

// Questions about an amount, and an amount out of typed text.
//
//     DecimalNumberExtension::from(u"1,236", formatter, NSRoundingMode::plain);   // 1.24 with two decimals in nl_BE

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSDecimalNumber.h>
#include <ZORPlatform/Foundation/NSNumberFormatter.h>

#include <string_view>

namespace ZORFoundation {

using ZORPlatform::NSDecimalNumber;
using ZORPlatform::NSNumberFormatter;
using ZORPlatform::NSRoundingMode;

namespace DecimalNumberExtension {

/// `isBiggerAsZero()`
///
/// Whether the amount's `doubleValue` is above zero. Zero and not-a-number are not. Pure.
[[nodiscard]] ZOR_EXPORT bool isBiggerAsZero(const NSDecimalNumber& amount) noexcept;

/// `negativeDecimalNumber()`
///
/// The amount with a minus sign when `isBiggerAsZero()`, else the amount itself: the result is never positive. Exact
/// and pure.
[[nodiscard]] ZOR_EXPORT NSDecimalNumber negativeDecimalNumber(const NSDecimalNumber& amount);

/// `from(amountString:inputFormatter:roundingMode:)`
///
/// Reads a text with a formatter and rounds what it read, exactly as its decimal digits say, to the formatter's maximum
/// of fraction digits. Nothing is raised.
///
/// @param amountString    in the writing of the formatter's locale; absent counts as empty
/// @param inputFormatter  its `maximumFractionDigits` must fit a signed 16-bit integer: 32768 or more stops the
/// process.
///                        32767 does not round
/// @return 0 when the formatter cannot read the text; not-a-number when the number is one that no decimal number holds
///
/// Thread-safe as the formatter is.
[[nodiscard]] ZOR_EXPORT NSDecimalNumber from(std::u16string_view amountString, const NSNumberFormatter& inputFormatter,
                                              NSRoundingMode roundingMode);

}  // namespace DecimalNumberExtension
}  // namespace ZORFoundation
