// SPDX-License-Identifier: Apache-2.0
#pragma once

// The shape of an amount while it is typed: unfinished amounts are valid. Its value is another matter, see
// ZORAmountFormatter.
//
//     StringExtension::isValidInputAmount(u"12,");      // true: decimals may follow
//     StringExtension::isValidInputAmount(u"12,345");   // false
//     StringExtension::explainInputAmount(u"12,345");   // decimals at position 5: found 3, at most 2

#include <ZORFoundation/Explanation.h>
#include <ZORPlatform/Export.h>

#include <string_view>

namespace ZORFoundation::StringExtension {

/// `isValidInputAmount`
///
/// Whether `text` is empty, or one to nine ASCII digits, or up to nine digits, "," or "." and up to two digits: all
/// after any white space (U+0020, U+0009 to U+000D), and the last form also before it. White space directly behind the
/// integer digits is not allowed; this asymmetry is deliberate. Signs, grouping marks and units above U+007F are not
/// allowed either.
///
/// @param text  absent counts as empty, which is valid
///
/// Pure. No allocation.
[[nodiscard]] ZOR_EXPORT bool isValidInputAmount(std::u16string_view text) noexcept;

/// `explainInputAmount`
///
/// Finds the first rule of `isValidInputAmount` that `text` breaks.
///
/// @return in this order: `unexpectedCharacter`, at the first unit above U+007F; `integerDigits`, at the tenth one
/// (found:
///         their number; expected: at most 9); `unexpectedCharacter`, at what stands in place of the separator;
///         `decimals`, at the third one (found: their number; expected: at most 2); `unexpectedCharacter`, at the first
///         unit behind them that is no white space. `none` exactly when `isValidInputAmount(text)`
///
/// Pure. No allocation.
[[nodiscard]] ZOR_EXPORT Explanation explainInputAmount(std::u16string_view text) noexcept;

}  // namespace ZORFoundation::StringExtension
