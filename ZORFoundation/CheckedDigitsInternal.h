// SPDX-License-Identifier: Apache-2.0
#pragma once

// Numbers of a fixed length whose last two digits are a check by 97 on the digits before them, their body. The kinds
// of number differ only in how they use the remainder: that is the rule each hands in, a function of the body and the
// check. A body answers `remainder()`, and `remainderBehindTwo()` for itself with a "2" before it.
//
//     isValidCheckedNumber<12>(text, [](const auto& body, std::int32_t check) { return body.remainder() == check; });

#include <ZORFoundation/Explanation.h>
#include <ZORFoundation/StringChecks.h>
#include <ZORPlatform/Foundation/FourUnitsInternal.h>
#include <ZORPlatform/Foundation/NSString.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ZORFoundation {

using ZORPlatform::fourDigitsUnchecked;
using ZORPlatform::fourUnits;
using ZORPlatform::nonDigits;
using ZORPlatform::withLeadingZeros;

/// How many digits are the check.
inline constexpr std::size_t kCheckDigits = 2;

/// A body of `Length` digits, as the number it spells.
template <std::size_t Length>
class DigitBody {
public:
    constexpr explicit DigitBody(std::uint64_t number) noexcept : number_(number) {}

    [[nodiscard]] constexpr std::int32_t remainder() const noexcept { return static_cast<std::int32_t>(number_ % 97); }
    [[nodiscard]] constexpr std::int32_t remainderBehindTwo() const noexcept {
        return static_cast<std::int32_t>((kTwo + number_) % 97);
    }

private:
    static constexpr std::uint64_t kTwo = [] {
        std::uint64_t value = 2;
        for (std::size_t i = 0; i < Length; ++i) value *= 10;
        return value;
    }();

    std::uint64_t number_;
};

/// A body that begins with spaces. `modulo97:` skips those of its first piece only, so the text itself is read.
class SpacedBody {
public:
    constexpr explicit SpacedBody(std::u16string_view text) noexcept : text_(text) {}

    [[nodiscard]] std::int32_t remainder() const noexcept;
    [[nodiscard]] std::int32_t remainderBehindTwo() const noexcept;

private:
    std::u16string_view text_;  // At most 12 units.
};

/// The rule of account numbers, structured comments and access numbers: the check is the body's remainder, with 97 in
/// place of 0. Check digits 00 are never valid.
inline constexpr auto kRemainderNeverZero = [](const auto& body, std::int32_t check) noexcept {
    const std::int32_t remainder = body.remainder();
    return (remainder == 0 ? 97 : remainder) == check;
};

/// The rule of national registration numbers: the check is 97 less the remainder of the body, or of the body behind a
/// "2". Check digits 00 are never valid.
inline constexpr auto kComplementOfRemainder = [](const auto& body, std::int32_t check) noexcept {
    return 97 - body.remainder() == check || 97 - body.remainderBehindTwo() == check;
};

/// The rule of national document numbers: the check is the body's remainder, 00 included.
inline constexpr auto kPlainRemainder = [](const auto& body, std::int32_t check) noexcept {
    return body.remainder() == check;
};

/// Reads the number that `Length` digits spell.
///
/// @return whether all `Length` units are digits; `number` is unset otherwise
template <std::size_t Length>
[[nodiscard]] constexpr bool readDigits(const char16_t* units, std::uint64_t& number) noexcept {
    static_assert(Length >= 4 && Length <= 19);
    // The first group may be short: it is moved up to end where a full one would, with zeros before it.
    constexpr std::size_t kFirst = (Length - 1) % 4 + 1;
    const std::uint64_t first = withLeadingZeros(fourUnits(units) << (16 * (4 - kFirst)), 4 - kFirst);
    std::uint64_t odd = nonDigits(first);
    std::uint64_t value = fourDigitsUnchecked(first);
    for (std::size_t at = kFirst; at < Length; at += 4) {
        const std::uint64_t group = fourUnits(units + at);
        odd |= nonDigits(group);
        value = value * 10'000 + fourDigitsUnchecked(group);
    }
    number = value;
    return odd == 0;
}

/// Whether `text` has `Length` units, is numeric (leading spaces are allowed) and passes `rule`.
template <std::size_t Length, typename Rule>
[[nodiscard]] bool isValidCheckedNumber(std::u16string_view text, const Rule& rule) noexcept {
    constexpr std::size_t kBody = Length - kCheckDigits;
    if (text.size() != Length) return false;
    if (std::uint64_t number = 0; readDigits<Length>(text.data(), number)) {
        return rule(DigitBody<kBody>(number / 100), static_cast<std::int32_t>(number % 100));
    }
    return StringExtension::isNumeric(text) &&
           rule(SpacedBody(text.substr(0, kBody)), ZORPlatform::intValue(text.substr(kBody)));
}

/// The rule that a text which is no valid number of `length` units breaks first: `length`; `unexpectedCharacter`, at
/// the first unit behind leading spaces that is no ASCII digit, or at the last unit of a text of spaces;
/// `checkDigits`, at the first of them.
[[nodiscard]] Explanation explainInvalidNumber(std::u16string_view text, std::size_t length);

/// The explaining twin of `isValidCheckedNumber`.
template <std::size_t Length, typename Rule>
[[nodiscard]] Explanation explainCheckedNumber(std::u16string_view text, const Rule& rule) {
    return isValidCheckedNumber<Length>(text, rule) ? Explanation{} : explainInvalidNumber(text, Length);
}

}  // namespace ZORFoundation
