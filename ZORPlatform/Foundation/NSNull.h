// SPDX-License-Identifier: Apache-2.0
#pragma once

// The platform's null object: stands for "nothing" where a collection needs an object.

namespace ZORPlatform {

/// `NSNull`. All are equal.
struct NSNull {
    friend constexpr bool operator==(NSNull, NSNull) noexcept { return true; }
};

}  // namespace ZORPlatform
