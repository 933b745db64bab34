// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSDecimalNumber.h>

#include <ZORPlatform/Foundation/DecimalReader.h>
#include <ZORPlatform/Foundation/NSException.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <utility>

namespace ZORPlatform {
namespace {

__extension__ using Word128 = unsigned __int128;

constexpr int kDigits = NSDecimalNumber::kMaximumDigits;

constexpr auto kPowersOfTen = [] {
    std::array<Word128, kDigits + 1> powers{};
    powers[0] = 1;
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
    return powers;
}();
// The largest power of ten that fits in 64 bits.
constexpr int kWordPower = 19;

constexpr Word128 powerOfTen(int exponent) noexcept { return kPowersOfTen[static_cast<std::size_t>(exponent)]; }
constexpr std::uint64_t wordPowerOfTen(int exponent) noexcept {
    return static_cast<std::uint64_t>(powerOfTen(exponent));
}
constexpr std::uint64_t lowHalf(Word128 value) noexcept { return static_cast<std::uint64_t>(value); }
constexpr std::uint64_t highHalf(Word128 value) noexcept { return static_cast<std::uint64_t>(value >> 64); }

/// The number of decimal digits of a value below 10^38; 0 for zero.
int digitCount(Word128 value) noexcept {
    return static_cast<int>(std::upper_bound(kPowersOfTen.begin(), kPowersOfTen.end(), value) - kPowersOfTen.begin());
}

/// An unsigned integer of 256 bits: it holds 77 digits, which is a product of two mantissas, or a mantissa with room
/// for one digit more than another mantissa below it.
class Wide {
public:
    constexpr Wide() noexcept = default;
    explicit Wide(Word128 value) noexcept : words_{lowHalf(value), highHalf(value), 0, 0} {}

    static Wide product(Word128 left, Word128 right) noexcept {
        Wide result(left);
        result.multiplyBy(lowHalf(right));
        Wide upper(left);
        upper.multiplyBy(highHalf(right));
        upper.words_ = {0, upper.words_[0], upper.words_[1], upper.words_[2]};
        result.add(upper);
        return result;
    }

    void multiplyBy(std::uint64_t factor) noexcept {
        Word128 carry = 0;
        for (std::uint64_t& word : words_) {
            carry += static_cast<Word128>(word) * factor;
            word = lowHalf(carry);
            carry >>= 64;
        }
    }

    void multiplyByPowerOfTen(int exponent) noexcept {
        for (; exponent > 0; exponent -= kWordPower) multiplyBy(wordPowerOfTen(std::min(exponent, kWordPower)));
    }

    /// @return the remainder
    std::uint64_t divideBy(std::uint64_t divisor) noexcept {
        Word128 remainder = 0;
        for (auto word = words_.rbegin(); word != words_.rend(); ++word) {
            remainder = (remainder << 64) | *word;
            *word = lowHalf(remainder / divisor);
            remainder %= divisor;
        }
        return lowHalf(remainder);
    }

    /// @return whether the remainder is other than zero
    bool divideByPowerOfTen(int exponent) noexcept {
        bool hasRemainder = false;
        for (; exponent > 0 && !isZero(); exponent -= kWordPower) {
            hasRemainder |= divideBy(wordPowerOfTen(std::min(exponent, kWordPower))) != 0;
        }
        return hasRemainder;
    }

    /// @param divisor  not zero, below 2^127
    /// @return whether the remainder is other than zero
    bool divideByWide(Word128 divisor) noexcept {
        Word128 remainder = 0;
        for (auto word = words_.rbegin(); word != words_.rend(); ++word) {
            std::uint64_t quotient = 0;
            for (int bit = 63; bit >= 0; --bit) {
                remainder = (remainder << 1) | ((*word >> bit) & 1);
                quotient <<= 1;
                if (remainder >= divisor) {
                    remainder -= divisor;
                    quotient |= 1;
                }
            }
            *word = quotient;
        }
        return remainder != 0;
    }

    void add(const Wide& other) noexcept {
        Word128 carry = 0;
        for (std::size_t i = 0; i < words_.size(); ++i) {
            carry += static_cast<Word128>(words_[i]) + other.words_[i];
            words_[i] = lowHalf(carry);
            carry >>= 64;
        }
    }

    /// @param other  not above this value
    void subtract(const Wide& other) noexcept {
        std::uint64_t borrow = 0;
        for (std::size_t i = 0; i < words_.size(); ++i) {
            const Word128 difference = static_cast<Word128>(words_[i]) - other.words_[i] - borrow;
            words_[i] = lowHalf(difference);
            borrow = highHalf(difference) != 0 ? 1 : 0;
        }
    }

    [[nodiscard]] bool isZero() const noexcept { return words_ == std::array<std::uint64_t, 4>{}; }
    [[nodiscard]] bool fitsHalf() const noexcept { return words_[2] == 0 && words_[3] == 0; }
    [[nodiscard]] Word128 lowerHalf() const noexcept { return (static_cast<Word128>(words_[1]) << 64) | words_[0]; }

    [[nodiscard]] int digitCount() const noexcept {
        Wide rest = *this;
        int digits = 0;
        while (!rest.fitsHalf() || rest.lowerHalf() >= powerOfTen(kDigits)) {
            rest.divideBy(wordPowerOfTen(kWordPower));
            digits += kWordPower;
        }
        return digits + ZORPlatform::digitCount(rest.lowerHalf());
    }

    friend bool operator<(const Wide& left, const Wide& right) noexcept {
        return std::lexicographical_compare(left.words_.rbegin(), left.words_.rend(), right.words_.rbegin(),
                                            right.words_.rend());
    }

private:
    std::array<std::uint64_t, 4> words_{};  // Least significant first.
};

/// What a rounding cut off, as a part of the last unit that it kept.
enum class Dropped : std::uint8_t { nothing, belowHalf, half, aboveHalf };

bool growsMagnitude(NSRoundingMode mode, bool isNegative, bool isOdd, Dropped dropped) noexcept {
    if (dropped == Dropped::nothing) return false;
    switch (mode) {
        case NSRoundingMode::plain:
            return dropped >= Dropped::half;
        case NSRoundingMode::down:
            return isNegative;
        case NSRoundingMode::up:
            return !isNegative;
        case NSRoundingMode::bankers:
            return dropped == Dropped::aboveHalf || (dropped == Dropped::half && isOdd);
    }
    return false;
}

Dropped droppedPart(Word128 remainder, Word128 unit) noexcept {
    if (remainder == 0) return Dropped::nothing;
    const Word128 half = unit / 2;
    if (remainder == half) return Dropped::half;
    return remainder < half ? Dropped::belowHalf : Dropped::aboveHalf;
}

/// A result before it has been made to fit.
struct Exact {
    Wide magnitude;
    int exponent;
    bool isNegative;
    bool hasMore;  // Something other than zero follows below the last unit; the magnitude then exceeds 38 digits.
};

/// Takes `count` digits off the end.
Dropped dropDigits(Exact& value, int count) noexcept {
    if (count <= 0) return value.hasMore ? Dropped::belowHalf : Dropped::nothing;
    // The last of them decides where the rest stands to one half, so it is taken alone.
    const bool hasMore = value.magnitude.divideByPowerOfTen(count - 1) || value.hasMore;
    const std::uint64_t digit = value.magnitude.divideBy(10);
    value.exponent += count;
    if (digit == 5) return hasMore ? Dropped::aboveHalf : Dropped::half;
    if (digit > 5) return Dropped::aboveHalf;
    return digit > 0 || hasMore ? Dropped::belowHalf : Dropped::nothing;
}

/// What can go wrong in a calculation.
enum class Accident : std::uint8_t { none, lostDigits, underflow, overflow, divisionByZero };

void raise(Accident accident, const NSDecimalNumberHandler& behavior) {
    switch (accident) {
        case Accident::lostDigits:
            if (behavior.raiseOnExactness()) {
                throw NSException(u"NSDecimalNumberExactnessException", u"the result has more than 38 digits");
            }
            break;
        case Accident::underflow:
            if (behavior.raiseOnUnderflow()) {
                throw NSException(u"NSDecimalNumberUnderflowException", u"the result is too small");
            }
            break;
        case Accident::overflow:
            if (behavior.raiseOnOverflow()) {
                throw NSException(u"NSDecimalNumberOverflowException", u"the result is too large");
            }
            break;
        case Accident::divisionByZero:
            if (behavior.raiseOnDivideByZero()) {
                throw NSException(u"NSDecimalNumberDivideByZeroException", u"the divisor is zero");
            }
            break;
        case Accident::none:
            break;
    }
}

}  // namespace

/// The calculations on what a number keeps.
struct NSDecimalNumber::Arithmetic {
    struct Result {
        NSDecimalNumber number;
        Accident accident = Accident::none;
    };

    static Word128 mantissa(const NSDecimalNumber& number) noexcept {
        return (static_cast<Word128>(number.high_) << 64) | number.low_;
    }

    /// Stores a value in its one form. `mantissa` is below 10^38, `exponent` not above the highest one.
    ///
    /// @return not-a-number when the exponent stays below the lowest one
    static NSDecimalNumber stored(Word128 mantissa, int exponent, bool isNegative) noexcept {
        NSDecimalNumber number;
        if (mantissa == 0) return number;
        for (int zeros = 16; highHalf(mantissa) != 0 && zeros > 0;) {
            const std::uint64_t power = wordPowerOfTen(zeros);
            if (exponent + zeros <= kHighestExponent && mantissa % power == 0) {
                mantissa /= power;
                exponent += zeros;
            } else {
                zeros /= 2;
            }
        }
        if (highHalf(mantissa) == 0) {
            std::uint64_t word = lowHalf(mantissa);
            for (; word % 10 == 0 && exponent < kHighestExponent; ++exponent) word /= 10;
            mantissa = word;
        }
        if (exponent < kLowestExponent) return notANumber();
        number.low_ = lowHalf(mantissa);
        number.high_ = highHalf(mantissa);
        number.exponent_ = static_cast<std::int16_t>(exponent);
        number.isNegative_ = isNegative;
        return number;
    }

    /// Stores a mantissa below 2^128 whose exponent may be too high for it: digits left free take up the difference.
    static Result storedFromAbove(Word128 mantissa, int exponent, bool isNegative) noexcept {
        if (mantissa >= powerOfTen(kDigits)) {
            // Only a rounding up of 38 nines arrives here.
            mantissa /= 10;
            ++exponent;
        }
        if (exponent > kHighestExponent && mantissa != 0) {
            const int excess = exponent - kHighestExponent;
            if (digitCount(mantissa) + excess > kDigits) return {notANumber(), Accident::overflow};
            mantissa *= powerOfTen(excess);
            exponent = kHighestExponent;
        }
        return {stored(mantissa, exponent, isNegative)};
    }

    /// Rounds a result to the digits and the exponents there are.
    static Result fitted(Exact value, NSRoundingMode mode) noexcept {
        const bool isZero = value.magnitude.isZero();
        const int surplus = value.magnitude.digitCount() - kDigits;
        const Dropped dropped = dropDigits(value, std::max(surplus, kLowestExponent - value.exponent));
        Word128 mantissa = value.magnitude.lowerHalf();
        if (growsMagnitude(mode, value.isNegative, (mantissa & 1) != 0, dropped)) ++mantissa;
        Result result = storedFromAbove(mantissa, value.exponent, value.isNegative);
        if (result.accident == Accident::none && dropped != Dropped::nothing) {
            result.accident = mantissa == 0 && !isZero ? Accident::underflow : Accident::lostDigits;
        }
        return result;
    }

    static Result sum(const NSDecimalNumber& left, const NSDecimalNumber& right, NSRoundingMode mode) noexcept {
        if (left.isZero()) return {right};
        if (right.isZero()) return {left};
        const bool leftIsUpper = left.exponent_ >= right.exponent_;
        const NSDecimalNumber& upper = leftIsUpper ? left : right;
        const NSDecimalNumber& lower = leftIsUpper ? right : left;

        // One digit more than the lower number can have: where the two do not overlap, the lower one's only part is
        // to be something other than zero behind at least 39 digits.
        const int gap = upper.exponent_ - lower.exponent_;
        const int lift = std::min(gap, kDigits + 1);
        Exact result{Wide(mantissa(upper)), upper.exponent_ - lift, upper.isNegative_, false};
        result.magnitude.multiplyByPowerOfTen(lift);
        Wide addend(mantissa(lower));
        result.hasMore = addend.divideByPowerOfTen(gap - lift);

        if (upper.isNegative_ == lower.isNegative_) {
            result.magnitude.add(addend);
        } else if (result.magnitude < addend) {
            std::swap(result.magnitude, addend);
            result.magnitude.subtract(addend);
            result.isNegative = lower.isNegative_;
        } else {
            result.magnitude.subtract(addend);
            // What is taken away beyond the addend leaves a part of the last unit.
            if (result.hasMore) result.magnitude.subtract(Wide(1));
        }
        return fitted(result, mode);
    }

    static Result product(const NSDecimalNumber& left, const NSDecimalNumber& right, NSRoundingMode mode) noexcept {
        return fitted({Wide::product(mantissa(left), mantissa(right)), left.exponent_ + right.exponent_,
                       left.isNegative_ != right.isNegative_, false},
                      mode);
    }

    static Result quotient(const NSDecimalNumber& left, const NSDecimalNumber& right, NSRoundingMode mode) noexcept {
        if (right.isZero()) return {notANumber(), Accident::divisionByZero};
        if (left.isZero()) return {left};
        const Word128 divisor = mantissa(right);
        // Enough for a quotient of 39 or 40 digits; the numerator then has at most 77.
        const int lift = kDigits + 1 + digitCount(divisor) - digitCount(mantissa(left));
        Exact result{Wide(mantissa(left)), left.exponent_ - right.exponent_ - lift,
                     left.isNegative_ != right.isNegative_, false};
        result.magnitude.multiplyByPowerOfTen(lift);
        result.hasMore = result.magnitude.divideByWide(divisor);
        return fitted(result, mode);
    }

    static Result rounded(const NSDecimalNumber& number, int scale, NSRoundingMode mode) noexcept {
        const int count = -scale - number.exponent_;
        if (count <= 0 || scale == NSDecimalNumberHandler::kNoScale || number.isZero()) return {number};
        if (count <= kWordPower && number.high_ == 0) {
            // Amounts of money are here: one division in a machine word.
            const std::uint64_t unit = wordPowerOfTen(count);
            std::uint64_t kept = number.low_ / unit;
            const Dropped dropped = droppedPart(number.low_ % unit, unit);
            if (growsMagnitude(mode, number.isNegative_, (kept & 1) != 0, dropped)) ++kept;
            return storedFromAbove(kept, number.exponent_ + count, number.isNegative_);
        }
        Word128 kept = 0;
        // A unit above 10^38 is more than twice any mantissa.
        Dropped dropped = Dropped::belowHalf;
        if (count <= kDigits) {
            kept = mantissa(number) / powerOfTen(count);
            dropped = droppedPart(mantissa(number) % powerOfTen(count), powerOfTen(count));
        }
        if (growsMagnitude(mode, number.isNegative_, (kept & 1) != 0, dropped)) ++kept;
        return storedFromAbove(kept, number.exponent_ + count, number.isNegative_);
    }

    using Operation = Result (*)(const NSDecimalNumber&, const NSDecimalNumber&, NSRoundingMode);

    static NSDecimalNumber calculate(Operation operation, const NSDecimalNumber& left, const NSDecimalNumber& right,
                                     const NSDecimalNumberHandler& behavior) {
        if (left.isNotANumber() || right.isNotANumber()) return notANumber();
        const Result result = operation(left, right, behavior.roundingMode());
        raise(result.accident, behavior);
        return result.number.decimalNumberByRoundingAccordingToBehavior(behavior);
    }
};

NSDecimalNumber DecimalReader::number() const noexcept {
    if (!hasDigit_) return NSDecimalNumber::notANumber();
    if (kept_ == 0) return {};
    const std::int64_t exponent = exponent_ + (exponentIsNegative_ ? -writtenExponent_ : writtenExponent_);
    // Trailing zeros may still lift an exponent, by less than the number of digits.
    if (exponent > NSDecimalNumber::kHighestExponent || exponent < NSDecimalNumber::kLowestExponent - kDigits) {
        return NSDecimalNumber::notANumber();
    }
    Word128 mantissa = first_;
    if (kept_ > kHalf) mantissa = mantissa * wordPowerOfTen(static_cast<int>(kept_ - kHalf)) + second_;
    return NSDecimalNumber::Arithmetic::stored(mantissa, static_cast<int>(exponent), isNegative_);
}

NSDecimalNumber NSDecimalNumber::decimalNumberWithMantissa(std::uint64_t mantissa, std::int16_t exponent,
                                                           bool isNegative) noexcept {
    if (mantissa == 0) return {};
    return exponent > kHighestExponent ? notANumber() : Arithmetic::stored(mantissa, exponent, isNegative);
}

NSDecimalNumber NSDecimalNumber::decimalNumberWithString(std::u16string_view text) noexcept {
    DecimalReader reader;
    for (const char16_t unit : text) {
        if (!reader.take(unit)) break;
    }
    return reader.number();
}

std::size_t NSDecimalNumber::writeDigits(std::span<char, kMaximumDigits> digits) const noexcept {
    const Word128 mantissa = Arithmetic::mantissa(*this);
    if (mantissa == 0) return 0;
    char* const begin = digits.data();
    char* const end = begin + digits.size();
    if (high_ == 0) return static_cast<std::size_t>(std::to_chars(begin, end, low_).ptr - begin);
    // Above 2^64, so there is at least one digit before the last 19, which keep their leading zeros.
    const Word128 power = powerOfTen(kWordPower);
    const std::to_chars_result first = std::to_chars(begin, end, lowHalf(mantissa / power));
    std::uint64_t rest = lowHalf(mantissa % power);
    for (int i = kWordPower - 1; i >= 0; --i, rest /= 10) first.ptr[i] = static_cast<char>('0' + rest % 10);
    return static_cast<std::size_t>(first.ptr + kWordPower - begin);
}

double NSDecimalNumber::doubleValue() const noexcept {
    if (isNotANumber_) return std::numeric_limits<double>::quiet_NaN();
    // Through text, whose reading is correctly rounded; a product with a power of ten would round twice.
    std::array<char, kMaximumDigits + 6> text{'0'};
    const std::size_t digits = writeDigits(std::span(text).first<kMaximumDigits>());
    char* end = text.data() + std::max<std::size_t>(digits, 1);
    *end++ = 'e';
    end = std::to_chars(end, text.data() + text.size(), exponent_).ptr;
    double value = 0;
    std::from_chars(text.data(), end, value);
    return isNegative_ ? -value : value;
}

std::u16string NSDecimalNumber::stringValue() const {
    if (isNotANumber_) return u"NaN";
    if (isZero()) return u"0";
    std::array<char, kMaximumDigits> buffer;
    const std::size_t count = writeDigits(buffer);
    const std::string_view digits(buffer.data(), count);
    std::u16string text;
    text.reserve(count + static_cast<std::size_t>(exponent_ < 0 ? 3 - exponent_ : 1 + exponent_));
    if (isNegative_) text.push_back(u'-');
    if (exponent_ >= 0) {
        text.append(digits.begin(), digits.end()).append(static_cast<std::size_t>(exponent_), u'0');
        return text;
    }
    const auto places = static_cast<std::size_t>(-exponent_);
    if (count > places) {
        text.append(digits.begin(), digits.end()).insert(text.size() - places, 1, u'.');
    } else {
        text.append(u"0.").append(places - count, u'0').append(digits.begin(), digits.end());
    }
    return text;
}

NSDecimalNumber NSDecimalNumber::decimalNumberByAdding(const NSDecimalNumber& other,
                                                       const NSDecimalNumberHandler& behavior) const {
    return Arithmetic::calculate(Arithmetic::sum, *this, other, behavior);
}

NSDecimalNumber NSDecimalNumber::decimalNumberBySubtracting(const NSDecimalNumber& other,
                                                            const NSDecimalNumberHandler& behavior) const {
    NSDecimalNumber negated = other;
    negated.isNegative_ = !other.isNegative_ && !other.isZero() && !other.isNotANumber_;
    return decimalNumberByAdding(negated, behavior);
}

NSDecimalNumber NSDecimalNumber::decimalNumberByMultiplyingBy(const NSDecimalNumber& other,
                                                              const NSDecimalNumberHandler& behavior) const {
    return Arithmetic::calculate(Arithmetic::product, *this, other, behavior);
}

NSDecimalNumber NSDecimalNumber::decimalNumberByDividingBy(const NSDecimalNumber& other,
                                                           const NSDecimalNumberHandler& behavior) const {
    return Arithmetic::calculate(Arithmetic::quotient, *this, other, behavior);
}

NSDecimalNumber NSDecimalNumber::decimalNumberByRoundingAccordingToBehavior(
    const NSDecimalNumberHandler& behavior) const {
    const Arithmetic::Result result = Arithmetic::rounded(*this, behavior.scale(), behavior.roundingMode());
    raise(result.accident, behavior);
    return result.number;
}

std::strong_ordering NSDecimalNumber::operator<=>(const NSDecimalNumber& other) const noexcept {
    if (*this == other) return std::strong_ordering::equal;
    if (isNotANumber_ || other.isNotANumber_) {
        return isNotANumber_ ? std::strong_ordering::less : std::strong_ordering::greater;
    }
    const auto sign = [](const NSDecimalNumber& number) { return number.isZero() ? 0 : number.isNegative_ ? -1 : 1; };
    if (sign(*this) != sign(other)) return sign(*this) <=> sign(other);

    Word128 first = Arithmetic::mantissa(*this);
    Word128 second = Arithmetic::mantissa(other);
    const int places = digitCount(first) + exponent_ - digitCount(second) - other.exponent_;
    bool isLess = places < 0;
    if (places == 0) {
        // As many places: the one with the higher exponent has that many digits fewer, so it can take them.
        const int gap = exponent_ - other.exponent_;
        (gap > 0 ? first : second) *= powerOfTen(std::abs(gap));
        isLess = first < second;
    }
    return isLess != isNegative_ ? std::strong_ordering::less : std::strong_ordering::greater;
}

}  // namespace ZORPlatform
