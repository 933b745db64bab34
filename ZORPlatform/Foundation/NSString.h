// SPDX-License-Identifier: Apache-2.0
#pragma once

// How the platform reads numbers out of text, and how its formatter prints what is absent.

#include <ZORPlatform/Export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// What "%@" prints for an absent object.
inline constexpr std::u16string_view kAbsentObjectText = u"(null)";

/// `longLongValue`: the integer that `text` begins with. Leading white space (units below U+0021, U+007F to U+00A0,
/// U+2000 to U+200B, U+3000) is skipped, then one "+" or "-" is taken, then ASCII digits up to the first unit that
/// is none. No digits give 0; a value out of range saturates. Pure.
[[nodiscard]] std::int64_t longLongValue(std::u16string_view text) noexcept;

/// `intValue`: as `longLongValue`, saturating at the limits of 32 bits. Pure.
[[nodiscard]] std::int32_t intValue(std::u16string_view text) noexcept;

/// `boolValue`: whether, behind leading white space and line ends, one optional sign and zeros, `text` goes on with one
/// of "YyTt" or a digit from 1 to 9. What follows is not read; the empty text is false. Pure.
[[nodiscard]] bool boolValue(std::u16string_view text) noexcept;

/// `Int(_:)`: the integer that the whole of `text` is: at most one "+" or "-", then ASCII digits, at least one, and no
/// white space. Absent for any other text and for a value out of range. Pure.
[[nodiscard]] std::optional<std::int64_t> wholeInteger(std::u16string_view text);

/// The format "%ld": decimal, a minus sign where negative, no grouping in any locale. Pure.
[[nodiscard]] std::u16string decimalText(std::int64_t value);

/// White space that number reading skips; not the set that trimming removes.
[[nodiscard]] constexpr bool isSkippedBeforeNumber(char16_t unit) noexcept {
    return unit < 0x21 || (unit >= 0x7F && unit <= 0xA0) || (unit >= 0x2000 && unit <= 0x200B) || unit == 0x3000;
}

}  // namespace ZORPlatform
