// SPDX-License-Identifier: Apache-2.0
#pragma once

// Exact decimal numbers: amounts of money are held in these, never in binary floating point.
//
// A number is digits × 10^exponent with at most 38 digits and an exponent from -128 to 127, or not-a-number. There is
// no infinity and no negative zero. Trailing zeros of the digits are moved into the exponent, so 1.50 and 1.5 are one
// and the same value.
//
//     const auto price = NSDecimalNumber::decimalNumberWithString(u"1234.565");
//     const NSDecimalNumberHandler toCents(NSRoundingMode::bankers, 2, false, false, false, false);
//     price.decimalNumberByRoundingAccordingToBehavior(toCents).stringValue();   // u"1234.56"

#include <ZORPlatform/Export.h>

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// What becomes of digits that a result has no room for. The raw values are the platform's.
enum class NSRoundingMode : std::uint8_t {
    plain = 0,    ///< To the nearest; a tie goes away from zero.
    down = 1,     ///< Towards minus infinity.
    up = 2,       ///< Towards plus infinity.
    bankers = 3,  ///< To the nearest; a tie goes to the even digit.
};

/// How a calculation rounds, and which of its accidents raise an `NSException`. An accident that does not raise gives
/// not-a-number (overflow, division by zero), zero (underflow) or the rounded result (lost digits). A value.
class NSDecimalNumberHandler {
public:
    /// The scale that stands for "no rounding".
    static constexpr std::int16_t kNoScale = 32767;

    /// `initWithRoundingMode:scale:raiseOnExactness:raiseOnOverflow:raiseOnUnderflow:raiseOnDivideByZero:`
    ///
    /// @param scale  digits kept after the decimal point; negative rounds to tens, hundreds, …
    constexpr NSDecimalNumberHandler(NSRoundingMode roundingMode, std::int16_t scale, bool raiseOnExactness,
                                     bool raiseOnOverflow, bool raiseOnUnderflow, bool raiseOnDivideByZero) noexcept
        : roundingMode_(roundingMode),
          scale_(scale),
          raiseOnExactness_(raiseOnExactness),
          raiseOnOverflow_(raiseOnOverflow),
          raiseOnUnderflow_(raiseOnUnderflow),
          raiseOnDivideByZero_(raiseOnDivideByZero) {}

    /// `defaultDecimalNumberHandler`: plain, no scale, raising on overflow, underflow and division by zero.
    [[nodiscard]] static constexpr NSDecimalNumberHandler defaultDecimalNumberHandler() noexcept {
        return {NSRoundingMode::plain, kNoScale, false, true, true, true};
    }

    [[nodiscard]] constexpr NSRoundingMode roundingMode() const noexcept { return roundingMode_; }
    [[nodiscard]] constexpr std::int16_t scale() const noexcept { return scale_; }
    /// Raises "NSDecimalNumberExactnessException" when a sum, product or quotient has more than 38 digits.
    [[nodiscard]] constexpr bool raiseOnExactness() const noexcept { return raiseOnExactness_; }
    /// Raises "NSDecimalNumberOverflowException".
    [[nodiscard]] constexpr bool raiseOnOverflow() const noexcept { return raiseOnOverflow_; }
    /// Raises "NSDecimalNumberUnderflowException" when a result other than zero is too small for any digit.
    [[nodiscard]] constexpr bool raiseOnUnderflow() const noexcept { return raiseOnUnderflow_; }
    /// Raises "NSDecimalNumberDivideByZeroException".
    [[nodiscard]] constexpr bool raiseOnDivideByZero() const noexcept { return raiseOnDivideByZero_; }

private:
    NSRoundingMode roundingMode_;
    std::int16_t scale_;
    bool raiseOnExactness_;
    bool raiseOnOverflow_;
    bool raiseOnUnderflow_;
    bool raiseOnDivideByZero_;
};

/// An exact decimal number. A value of 24 bytes; nothing but `stringValue` allocates. Not-a-number equals itself, is
/// below every number, and makes every calculation it enters not-a-number. Pure throughout.
class ZOR_EXPORT NSDecimalNumber {
public:
    static constexpr std::size_t kMaximumDigits = 38;
    static constexpr int kLowestExponent = -128;
    static constexpr int kHighestExponent = 127;

    /// `zero`
    constexpr NSDecimalNumber() noexcept = default;

    /// `notANumber`
    [[nodiscard]] static constexpr NSDecimalNumber notANumber() noexcept {
        NSDecimalNumber number;
        number.isNotANumber_ = true;
        return number;
    }

    /// `decimalNumberWithMantissa:exponent:isNegative:`
    ///
    /// @return mantissa × 10^exponent; not-a-number when the exponent is outside -128…127
    [[nodiscard]] static NSDecimalNumber decimalNumberWithMantissa(std::uint64_t mantissa, std::int16_t exponent,
                                                                   bool isNegative) noexcept;

    /// `decimalNumberWithString:`
    ///
    /// Reads the number that `text` begins with, "." being the decimal mark in every locale: white space and line
    /// ends, one "+" or "-", digits, "." and digits, "e" or "E" with a sign and digits. Digits are ASCII; either the
    /// integer or the fraction digits may be missing. What follows is ignored, so "7.8.9" is 7.8. Of more than 38
    /// digits the first 38 are kept, the others are cut off.
    ///
    /// @return not-a-number when the number has no digit, or its exponent, fraction digits counted in, is outside
    ///         -128…127
    [[nodiscard]] static NSDecimalNumber decimalNumberWithString(std::u16string_view text) noexcept;

    [[nodiscard]] constexpr bool isNotANumber() const noexcept { return isNotANumber_; }
    [[nodiscard]] constexpr bool isNegative() const noexcept { return isNegative_; }
    [[nodiscard]] constexpr bool isZero() const noexcept { return low_ == 0 && high_ == 0 && !isNotANumber_; }

    /// The power of ten that the digits are multiplied with; 0 for zero and not-a-number.
    [[nodiscard]] constexpr int exponent() const noexcept { return exponent_; }

    /// Writes the digits as ASCII, the first one not "0".
    ///
    /// @return how many were written; 0 for zero and not-a-number
    std::size_t writeDigits(std::span<char, kMaximumDigits> digits) const noexcept;

    /// `doubleValue`: the nearest double; a quiet NaN for not-a-number.
    [[nodiscard]] double doubleValue() const noexcept;

    /// `stringValue`: plain digits with "." and never an exponent, at most 167 units; "0"; "NaN".
    [[nodiscard]] std::u16string stringValue() const;

    /// `decimalNumberByAdding:withBehavior:`
    ///
    /// The result is rounded to 38 digits where it has more, then to the scale. Raises as `behavior` says.
    [[nodiscard]] NSDecimalNumber decimalNumberByAdding(
        const NSDecimalNumber& other,
        const NSDecimalNumberHandler& behavior = NSDecimalNumberHandler::defaultDecimalNumberHandler()) const;
    /// `decimalNumberBySubtracting:withBehavior:`, as adding.
    [[nodiscard]] NSDecimalNumber decimalNumberBySubtracting(
        const NSDecimalNumber& other,
        const NSDecimalNumberHandler& behavior = NSDecimalNumberHandler::defaultDecimalNumberHandler()) const;
    /// `decimalNumberByMultiplyingBy:withBehavior:`, as adding.
    [[nodiscard]] NSDecimalNumber decimalNumberByMultiplyingBy(
        const NSDecimalNumber& other,
        const NSDecimalNumberHandler& behavior = NSDecimalNumberHandler::defaultDecimalNumberHandler()) const;
    /// `decimalNumberByDividingBy:withBehavior:`, as adding.
    [[nodiscard]] NSDecimalNumber decimalNumberByDividingBy(
        const NSDecimalNumber& other,
        const NSDecimalNumberHandler& behavior = NSDecimalNumberHandler::defaultDecimalNumberHandler()) const;

    /// `decimalNumberByRoundingAccordingToBehavior:`
    ///
    /// Keeps `behavior.scale()` digits after the point. All dropped digits decide what a tie is. A number that has no
    /// more digits than that comes back unchanged. Lost digits are what rounding is for and never raise.
    [[nodiscard]] NSDecimalNumber decimalNumberByRoundingAccordingToBehavior(
        const NSDecimalNumberHandler& behavior) const;

    friend constexpr bool operator==(const NSDecimalNumber&, const NSDecimalNumber&) noexcept = default;
    /// `compare:`, by value.
    [[nodiscard]] std::strong_ordering operator<=>(const NSDecimalNumber& other) const noexcept;

    // The public part ends here.
private:
    friend class DecimalReader;
    struct Arithmetic;

    // The digits as one integer, below 10^38, in two halves. It ends in "0" only where the exponent is the highest
    // one, and zero has exponent 0 and no sign: so equal values have equal members.
    std::uint64_t low_ = 0;
    std::uint64_t high_ = 0;
    std::int16_t exponent_ = 0;
    bool isNegative_ = false;
    bool isNotANumber_ = false;
};

}  // namespace ZORPlatform
