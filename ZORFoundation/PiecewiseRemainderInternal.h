// SPDX-License-Identifier: Apache-2.0
#pragma once

// The remainder by 97 of a text taken unit by unit, in the pieces of seven that `modulo97:` reads.

#include <ZORPlatform/Foundation/NSString.h>

#include <cstdint>

namespace ZORFoundation {

/// Reads pieces as integers, each behind the remainder so far. A piece is read up to its first unit that is no digit;
/// only the first may begin with white space and a sign, since a remainder stands before the others.
class PiecewiseRemainder {
public:
    constexpr void append(char16_t unit) noexcept {
        if (reading_ != Reading::nothing) read(unit);
        if (++units_ == kPieceUnits) endPiece();
    }

    /// Whether `appendNumber` may be called: digits are read, and no sign stands before them.
    [[nodiscard]] constexpr bool takesNumber() const noexcept { return reading_ != Reading::nothing && !isNegative_; }

    /// Appends `digits` digits at once.
    ///
    /// @param number      what they spell, below 100 million
    /// @param powerOfTen  10 to the power of `digits`, by 97
    constexpr void appendNumber(std::uint32_t number, std::uint32_t digits, std::uint32_t powerOfTen) noexcept {
        value_ = static_cast<std::uint32_t>((std::uint64_t{value_} * powerOfTen + number) % 97);
        units_ = (units_ + static_cast<int>(digits)) % kPieceUnits;
        reading_ = Reading::digits;
    }

    /// The remainder of all units so far; negative only behind a "-".
    [[nodiscard]] constexpr std::int32_t value() const noexcept {
        const auto remainder = static_cast<std::int32_t>(value_ % 97);
        return isNegative_ ? -remainder : remainder;
    }

private:
    enum class Reading : std::uint8_t { beforeNumber, digits, nothing };

    static constexpr int kPieceUnits = 7;

    constexpr void read(char16_t unit) noexcept {
        if (unit >= u'0' && unit <= u'9') {
            value_ = value_ * 10 + (unit - u'0');
            reading_ = Reading::digits;
        } else if (reading_ == Reading::digits) {
            reading_ = Reading::nothing;
        } else if (unit == u'+' || unit == u'-') {
            isNegative_ = unit == u'-';
            reading_ = Reading::digits;
        } else if (!ZORPlatform::isSkippedBeforeNumber(unit)) {
            reading_ = Reading::nothing;
        }
    }

    constexpr void endPiece() noexcept {
        value_ %= 97;
        // The text of a remainder of 0 has no sign.
        isNegative_ = isNegative_ && value_ != 0;
        reading_ = Reading::digits;
        units_ = 0;
    }

    std::uint32_t value_ = 0;  // Without the sign; at most nine digits.
    int units_ = 0;
    Reading reading_ = Reading::beforeNumber;
    bool isNegative_ = false;
};

}  // namespace ZORFoundation
