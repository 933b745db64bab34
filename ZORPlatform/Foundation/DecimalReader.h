// SPDX-License-Identifier: Apache-2.0
#pragma once

// Reads a decimal number unit by unit, so that a caller can drop or replace units on the way without a copy of the
// text. The grammar is that of NSDecimalNumber::decimalNumberWithString.

#include <ZORPlatform/Foundation/NSDecimalNumber.h>
#include <ZORPlatform/Foundation/Text.h>

#include <cstdint>

namespace ZORPlatform {

class DecimalReader {
public:
    /// Takes the next unit. @return false once the number has ended: then this unit and all later ones are ignored
    bool take(char16_t unit) noexcept {
        if (unit >= u'0' && unit <= u'9') return takeDigit(static_cast<unsigned>(unit - u'0'));
        switch (unit) {
            case u'.':
                if (stage_ > Stage::kInteger) return end();
                stage_ = Stage::kFraction;
                return true;
            case u'+':
            case u'-':
                return takeSign(unit == u'-');
            case u'e':
            case u'E':
                if (stage_ > Stage::kFraction) return end();
                stage_ = Stage::kExponentSign;
                return true;
            default:
                return (stage_ == Stage::kBlank && (isWhitespace(unit) || isNewline(unit))) || end();
        }
    }

    /// The number read so far, or not-a-number.
    [[nodiscard]] NSDecimalNumber number() const noexcept;

private:
    enum class Stage : std::uint8_t { kBlank, kInteger, kFraction, kExponentSign, kExponent, kEnded };
    static constexpr unsigned kHalf = NSDecimalNumber::kMaximumDigits / 2;
    // Far outside what any text in memory can bring back into range with its own digits.
    static constexpr std::int64_t kExponentLimit = 100'000'000'000'000'000;

    bool end() noexcept {
        stage_ = Stage::kEnded;
        return false;
    }

    bool takeDigit(unsigned digit) noexcept {
        if (stage_ <= Stage::kFraction) {
            if (stage_ == Stage::kBlank) stage_ = Stage::kInteger;
            hasDigit_ = true;
            takeMantissaDigit(digit);
            return true;
        }
        if (stage_ == Stage::kEnded) return false;
        stage_ = Stage::kExponent;
        if (writtenExponent_ < kExponentLimit) writtenExponent_ = writtenExponent_ * 10 + digit;
        return true;
    }

    void takeMantissaDigit(unsigned digit) noexcept {
        if (kept_ == NSDecimalNumber::kMaximumDigits) {
            // Dropped: before the point it still counts as a place.
            if (stage_ == Stage::kInteger) ++exponent_;
            return;
        }
        if (stage_ == Stage::kFraction) --exponent_;
        if (kept_ == 0 && digit == 0) return;
        std::uint64_t& half = kept_ < kHalf ? first_ : second_;
        half = half * 10 + digit;
        ++kept_;
    }

    bool takeSign(bool negative) noexcept {
        if (stage_ == Stage::kBlank) {
            isNegative_ = negative;
            stage_ = Stage::kInteger;
            return true;
        }
        if (stage_ != Stage::kExponentSign) return end();
        exponentIsNegative_ = negative;
        stage_ = Stage::kExponent;
        return true;
    }

    // The kept digits: the first 19 in one word, the next 19 in the other.
    std::uint64_t first_ = 0;
    std::uint64_t second_ = 0;
    std::int64_t exponent_ = 0;
    std::int64_t writtenExponent_ = 0;
    unsigned kept_ = 0;
    Stage stage_ = Stage::kBlank;
    bool hasDigit_ = false;
    bool isNegative_ = false;
    bool exponentIsNegative_ = false;
};

}  // namespace ZORPlatform
