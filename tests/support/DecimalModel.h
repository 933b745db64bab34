// SPDX-License-Identifier: Apache-2.0
#pragma once

// Decimal arithmetic the slow way, digit by digit in texts without a limit, as the referee of NSDecimalNumber. A result
// is exact until `fitted` or `rounded` cuts it.

#include <ZORPlatform/Foundation/NSDecimalNumber.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace support {

/// digits × 10^exponent. The digits may begin with zeros; no digits are zero.
class DecimalModel {
public:
    DecimalModel(std::string digits, int exponent, bool isNegative)
        : digits_(std::move(digits)), exponent_(exponent), isNegative_(isNegative) {
        digits_.erase(0, std::min(digits_.find_first_not_of('0'), digits_.size()));
    }

    /// @param number  not not-a-number
    static DecimalModel of(const ZORPlatform::NSDecimalNumber& number) {
        const std::u16string text = number.stringValue();
        std::string digits;
        for (const char16_t unit : text) {
            if (unit >= u'0' && unit <= u'9') digits.push_back(static_cast<char>(unit));
        }
        const std::size_t point = text.find(u'.');
        return {digits, point == text.npos ? 0 : -static_cast<int>(text.size() - point - 1), text.front() == u'-'};
    }

    [[nodiscard]] DecimalModel plus(const DecimalModel& other) const {
        const int exponent = std::min(exponent_, other.exponent_);
        const std::string left = liftedTo(exponent);
        const std::string right = other.liftedTo(exponent);
        if (isNegative_ == other.isNegative_) return {sum(left, right), exponent, isNegative_};
        if (isBelow(left, right)) return {difference(right, left), exponent, other.isNegative_};
        return {difference(left, right), exponent, isNegative_};
    }

    [[nodiscard]] DecimalModel negated() const { return {digits_, exponent_, !isNegative_}; }

    [[nodiscard]] DecimalModel times(const DecimalModel& other) const {
        std::string product;
        for (const char digit : other.digits_) {
            product.push_back('0');
            for (char count = '0'; count < digit; ++count) product = sum(product, digits_);
        }
        return {product, exponent_ + other.exponent_, isNegative_ != other.isNegative_};
    }

    /// To more digits than any rounding keeps; a remainder shows as one more digit "1".
    [[nodiscard]] DecimalModel dividedBy(const DecimalModel& other) const {
        constexpr int kLift = 500;
        std::string quotient;
        std::string remainder;
        for (const char digit : digits_ + std::string(kLift, '0')) {
            remainder.push_back(digit);
            remainder.erase(0, std::min(remainder.find_first_not_of('0'), remainder.size()));
            char count = '0';
            for (; !isBelow(remainder, other.digits_); ++count) remainder = difference(remainder, other.digits_);
            quotient.push_back(count);
        }
        quotient.push_back(remainder.find_first_not_of('0') == remainder.npos ? '0' : '1');
        return {quotient, exponent_ - other.exponent_ - kLift - 1, isNegative_ != other.isNegative_};
    }

    /// With at most `scale` digits after the point.
    [[nodiscard]] DecimalModel rounded(int scale, ZORPlatform::NSRoundingMode mode) const {
        const int count = -scale - exponent_;
        if (count <= 0) return *this;
        const std::string padded = std::string(static_cast<std::size_t>(count), '0') + digits_;
        const std::size_t size = padded.size() - static_cast<std::size_t>(count);
        std::string kept = "0" + padded.substr(0, size);
        const std::string dropped = padded.substr(size);
        if (growsMagnitude(mode, dropped, (kept.back() - '0') % 2 != 0)) kept = sum(kept, "1");
        return {kept, -scale, isNegative_};
    }

    /// With at most 38 digits and no exponent below the lowest; absent above the greatest number.
    [[nodiscard]] std::optional<DecimalModel> fitted(ZORPlatform::NSRoundingMode mode) const {
        constexpr int kDigits = ZORPlatform::NSDecimalNumber::kMaximumDigits;
        const int surplus = static_cast<int>(digits_.size()) - kDigits;
        const int scale = std::min(-ZORPlatform::NSDecimalNumber::kLowestExponent, -exponent_ - std::max(surplus, 0));
        const DecimalModel result = rounded(scale, mode);
        const DecimalModel greatest(std::string(kDigits, '9'), ZORPlatform::NSDecimalNumber::kHighestExponent, false);
        const int exponent = std::min(result.exponent_, greatest.exponent_);
        if (isBelow(greatest.liftedTo(exponent), result.liftedTo(exponent))) return std::nullopt;
        return result;
    }

    /// Below, equal to or above zero as this is below, equal to or above `other`.
    [[nodiscard]] int comparedWith(const DecimalModel& other) const {
        const DecimalModel rest = plus(other.negated());
        return rest.digits_.empty() ? 0 : rest.isNegative_ ? -1 : 1;
    }

    /// As NSDecimalNumber writes it.
    [[nodiscard]] std::u16string text() const {
        if (digits_.empty()) return u"0";
        std::string digits = exponent_ > 0 ? liftedTo(0) : digits_;
        const auto places = static_cast<std::size_t>(std::max(-exponent_, 0));
        if (digits.size() <= places) digits.insert(0, places + 1 - digits.size(), '0');
        std::string fraction = digits.substr(digits.size() - places);
        fraction.erase(fraction.find_last_not_of('0') + 1);
        std::string whole = digits.substr(0, digits.size() - places);
        if (isNegative_) whole.insert(0, 1, '-');
        if (!fraction.empty()) whole += "." + fraction;
        return {whole.begin(), whole.end()};
    }

private:
    [[nodiscard]] std::string liftedTo(int exponent) const {
        return digits_ + std::string(static_cast<std::size_t>(exponent_ - exponent), '0');
    }

    [[nodiscard]] bool growsMagnitude(ZORPlatform::NSRoundingMode mode, std::string_view dropped, bool isOdd) const {
        if (dropped.find_first_not_of('0') == dropped.npos) return false;
        const bool isTie = dropped.front() == '5' && dropped.find_first_not_of('0', 1) == dropped.npos;
        switch (mode) {
            case ZORPlatform::NSRoundingMode::down:
                return isNegative_;
            case ZORPlatform::NSRoundingMode::up:
                return !isNegative_;
            case ZORPlatform::NSRoundingMode::bankers:
                return isTie ? isOdd : dropped.front() >= '5';
            case ZORPlatform::NSRoundingMode::plain:
                break;
        }
        return dropped.front() >= '5';
    }

    static std::pair<std::string, std::string> padded(std::string left, std::string right) {
        const std::size_t size = std::max(left.size(), right.size());
        return {left.insert(0, size - left.size(), '0'), right.insert(0, size - right.size(), '0')};
    }

    static bool isBelow(const std::string& left, const std::string& right) {
        const auto [first, second] = padded(left, right);
        return first < second;
    }

    static std::string sum(const std::string& left, const std::string& right) {
        auto [result, addend] = padded("0" + left, "0" + right);
        int carry = 0;
        for (std::size_t i = result.size(); i-- > 0;) {
            const int digit = result[i] - '0' + addend[i] - '0' + carry;
            result[i] = static_cast<char>('0' + digit % 10);
            carry = digit / 10;
        }
        return result;
    }

    /// @param right  not above `left`
    static std::string difference(const std::string& left, const std::string& right) {
        auto [result, subtrahend] = padded(left, right);
        int borrow = 0;
        for (std::size_t i = result.size(); i-- > 0;) {
            const int digit = result[i] - subtrahend[i] - borrow;
            borrow = digit < 0 ? 1 : 0;
            result[i] = static_cast<char>('0' + digit + 10 * borrow);
        }
        return result;
    }

    std::string digits_;
    int exponent_;
    bool isNegative_;
};

}  // namespace support
