// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSNumber.h>

#include <cmath>
#include <limits>

namespace ZORPlatform {

bool NSNumber::boolValue() const noexcept {
    return visit([](auto value) { return value != decltype(value){}; });
}

std::int64_t NSNumber::integerValue() const noexcept {
    return visit([](auto value) -> std::int64_t {
        using Limits = std::numeric_limits<std::int64_t>;
        if constexpr (std::is_floating_point_v<decltype(value)>) {
            if (std::isnan(value)) return 0;
            // 2^63 is the first double that does not fit.
            if (value >= 9223372036854775808.0) return Limits::max();
            if (value <= -9223372036854775808.0) return Limits::min();
            return static_cast<std::int64_t>(value);
        } else if constexpr (std::is_same_v<decltype(value), std::uint64_t>) {
            return Limits::max();
        } else {
            return static_cast<std::int64_t>(value);
        }
    });
}

float NSNumber::floatValue() const noexcept {
    return visit([](auto value) { return static_cast<float>(value); });
}

double NSNumber::doubleValue() const noexcept {
    return visit([](auto value) { return static_cast<double>(value); });
}

}  // namespace ZORPlatform
