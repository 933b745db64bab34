// SPDX-License-Identifier: Apache-2.0
#pragma once

// A number that remembers what it was made from.

#include <ZORPlatform/Export.h>

#include <concepts>
#include <cstdint>
#include <utility>
#include <variant>

namespace ZORPlatform {

/// The platform's number object: made from a boolean, an integer, a float or a double, and asked as any of them. Equal
/// when made from the same kind of the same value.
class ZOR_EXPORT NSNumber {
public:
    /// `initWithBool:`
    NSNumber(std::same_as<bool> auto value) noexcept : value_(value) {}
    /// `initWithInteger:`, for every integer type
    template <std::integral Integer>
    requires(!std::same_as<Integer, bool>) NSNumber(Integer value)
    noexcept {
        if (std::in_range<std::int64_t>(value)) {
            value_ = static_cast<std::int64_t>(value);
        } else {
            value_ = static_cast<std::uint64_t>(value);
        }
    }
    /// `initWithFloat:`
    NSNumber(float value) noexcept : value_(value) {}
    /// `initWithDouble:`
    NSNumber(double value) noexcept : value_(value) {}

    /// `boolValue`: false for zero only.
    [[nodiscard]] bool boolValue() const noexcept;
    /// `integerValue`: a real is cut towards zero. What 64 bits cannot hold saturates; not-a-number gives 0.
    [[nodiscard]] std::int64_t integerValue() const noexcept;
    /// `floatValue`
    [[nodiscard]] float floatValue() const noexcept;
    /// `doubleValue`
    [[nodiscard]] double doubleValue() const noexcept;

    /// Calls `visitor` with the number as it was made: `bool`, `std::int64_t`, `std::uint64_t` (above 2^63−1 only),
    /// `float` or `double`.
    template <class Visitor>
    decltype(auto) visit(Visitor&& visitor) const {
        return std::visit(std::forward<Visitor>(visitor), value_);
    }

    friend bool operator==(const NSNumber&, const NSNumber&) noexcept = default;

private:
    std::variant<bool, std::int64_t, std::uint64_t, float, double> value_;
};

}  // namespace ZORPlatform
