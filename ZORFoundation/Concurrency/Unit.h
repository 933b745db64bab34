// SPDX-License-Identifier: Apache-2.0
#pragma once

// The type of "no value": Future<Unit> tells only that something is done.

namespace ZORFoundation {

/// Carries no data; every `Unit` equals every other.
struct Unit {
    friend constexpr bool operator==(Unit, Unit) noexcept = default;
};

}  // namespace ZORFoundation
